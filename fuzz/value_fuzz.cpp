// Content types, dispositions and parameter lists. A value that parses and prints reads
// back to the same print and an equal value; a failed parse leaves the object, and every
// handle sharing it, printing as before. A content type parses into a new body (sharers
// keep the old value); a disposition into the shared body (sharers see the new value).
// Left out of the fixed point, counted: tokens holding a NUL (see FuzzCheck.h) and values
// holding a CR or LF, which reading drops from quoted strings.
#include "FuzzCheck.h"

#include <mime/KNMime.h>

#include <cstddef>
#include <cstdint>

namespace {

using fuzzcheck::check;
using fuzzcheck::skip;

// The text fromString reads back from a printed value: a printed parameter list starts
// with "; " so that it can follow a type, and that is not part of the list.
KNCString readable(const KNCString& printed, bool list)
{
    return list ? printed.substr(printed.size() < 2 ? printed.size() : 2) : printed;
}

// Parses `text` into a value read from `kept` and checks what a failure leaves or, on
// success, what the sharers see and the fixed point.
template <class Value>
void checkValue(const char* kind, const KNCString& text, KNCString kept, bool sharedBody, bool list = false)
{
    Value value;
    value.fromString(kept);
    kept = value.asString();
    const Value sharer = value;
    try {
        value.fromString(text);
    } catch (const KNxmsg& e) {
        check("failed parse leaves the value", value.asString() == kept && sharer.asString() == kept,
              [&] { return KNCString(kind) + ": " + e.why() + "\n" + text; });
        return;
    }
    KNCString printed;
    try {
        printed = value.asString();
    } catch (const KNxmsg& e) {
        skip("parsed but not printable: " + fuzzcheck::errorId(e));
        return;
    }
    if (fuzzcheck::nulInTokens(value)) {
        skip(fuzzcheck::nulInToken);
        return;
    }
    if (printed.find_first_of("\r\n") != KNCString::npos) {
        // Read from a quoted pair; a header refuses to print it (INVALID_VALUE) unless it is
        // a fold, which reading removes.
        skip(fuzzcheck::lineBreakInValue);
        return;
    }
    check("sharers follow the documented body", (sharer.asString() == printed) == sharedBody || printed == kept,
          [&] { return KNCString(kind) + ": " + text; });
    Value again;
    KNCString reread;
    try {
        again.fromString(readable(printed, list));
    } catch (const KNxmsg& e) {
        reread = e.why();
    }
    check("printed value parses", reread.empty(), [&] { return KNCString(kind) + ": " + reread + "\n" + printed; });
    check("print-parse-print fixed point", again.asString() == printed,
          [&] { return KNCString(kind) + ": " + printed + "\n" + again.asString() + "\ninput: " + text; });
    check("reread value equal", again == value, [&] { return KNCString(kind) + ": " + printed; });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const KNCString text(reinterpret_cast<const char*>(data), size);
    checkValue<KNMimeContentType>("content type", text, "text/plain; a=\"1\"", false);
    checkValue<KNMimeContentDisposition>("disposition", text, "inline; filename=\"k\"", true);
    checkValue<KNMimeParameterList>("parameter list", text, "a=1", false, true);
    return 0;
}
