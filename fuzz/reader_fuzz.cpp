// The forgiving reader on any bytes: it never throws, what it reads prints, and the printed
// text reads back to the same tree (a fixed point after one repair).
#include <mail/KNMimeReader.h>
#include <mime/KNMime.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

[[noreturn]] void fail(const char* what, std::string_view detail)
{
    std::fprintf(stderr, "reader property broken: %s\n%.*s\n", what, static_cast<int>(detail.size()), detail.data());
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const KNMimeReader reader;
    KNCString printed;
    KNMimeReadResult first;
    try {
        first = reader.read(input);
    } catch (const KNxmsg& e) {
        fail("read threw", e.why());
    }
    if (first.getEntities().empty() || !(first.getEntities()[0].part == first.getMessage()))
        fail("the first entity is not the message", input);
    try {
        printed = first.getMessage().asString();
    } catch (const KNxmsg& e) {
        fail("the tree read does not print", e.why());
    }
    const KNMimeReadResult again = reader.read(printed);
    if (!(again.getMessage() == first.getMessage()))
        fail("printing and reading again changed the tree", printed);
    if (again.getMessage().asString() != printed)
        fail("printing is not a fixed point", printed);
    return 0;
}
