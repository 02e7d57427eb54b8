// Whole entities: any text either parses or throws a library error; what parses prints.
#include <mime/KNMime.h>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const KNCString text(reinterpret_cast<const char*>(data), size);
    KNMimePart part;
    try {
        part.fromString(text);
    } catch (const KNxmsg&) {
        return 0;
    }
    try {
        const KNCString printed = part.asString();
        KNMimePart again;
        again.fromString(printed);
        (void)(again == part);
    } catch (const KNxmsg&) {
    }
    return 0;
}
