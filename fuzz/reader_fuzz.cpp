// The forgiving reader on any bytes: it never throws, the first entity is the message, what
// it reads prints, and the printed text reads back to the same tree and prints the same (a
// fixed point after one repair).
#include "FuzzCheck.h"

#include <mail/KNMimeReader.h>
#include <mime/KNMime.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

using fuzzcheck::check;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const KNMimeReader reader;
    KNCString thrown;
    KNMimeReadResult first;
    try {
        first = reader.read(input);
    } catch (const KNxmsg& e) {
        thrown = e.why();
    }
    check("read never throws", thrown.empty(), [&] { return thrown; });
    check("first entity is the message",
          !first.getEntities().empty() && first.getEntities()[0].part.body() == first.getMessage().body());
    KNCString printed;
    try {
        printed = first.getMessage().asString();
    } catch (const KNxmsg& e) {
        thrown = e.why();
    }
    check("tree read prints", thrown.empty(), [&] { return thrown + "\ninput: " + KNCString(input); });
    const KNMimeReadResult again = reader.read(printed);
    check("reread tree equal", again.getMessage() == first.getMessage(), [&] { return printed; });
    check("reread prints the same", again.getMessage().asString() == printed, [&] { return printed; });
    return 0;
}
