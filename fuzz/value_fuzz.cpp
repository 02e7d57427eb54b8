// Media types, dispositions and parameter lists.
#include <mime/KNMime.h>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const KNCString text(reinterpret_cast<const char*>(data), size);
    try {
        KNMimeContentType type;
        type.fromString(text);
        (void)type.asString();
    } catch (const KNxmsg&) {
    }
    try {
        KNMimeContentDisposition disposition;
        disposition.fromString(text);
        (void)disposition.asString();
    } catch (const KNxmsg&) {
    }
    try {
        KNMimeParameterList list;
        list.fromString(text);
        KNMimeParameterList again;
        again.fromString(list.asString());
        (void)(again == list);
    } catch (const KNxmsg&) {
    }
    return 0;
}
