// Header lines: parse, print, compare, convert; only library errors may escape.
#include <mime/KNMime.h>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const KNCString text(reinterpret_cast<const char*>(data), size);
    try {
        KNMimeHeader header;
        header.fromString(text);
        KNMimeHeader copy = header.copy();
        (void)(copy == header);
        (void)header.asString();
    } catch (const KNxmsg&) {
    }
    try {
        KNMimeContentTypeHeader typed;
        typed.fromString("Content-Type: " + text);
        (void)typed.getContentType().asString();
    } catch (const KNxmsg&) {
    }
    return 0;
}
