// Whole entities. A text that parses and prints reads back to the same print (print, parse,
// print is a fixed point) and to an equal part; a failed parse leaves the handle and its
// sharers as they were; a successful one leaves the sharers on the old body. Finding nested
// delimiters through the index of dash runs gives the tree, or the error, that searching
// each multipart's own text gives.
//
// Skipped from the fixed point, and counted: a tree in which a nested boundary begins with
// an enclosing one's (its delimiter lines then also split the enclosing body, as documented),
// or a part whose printed text holds an enclosing delimiter inside a line (delimiters are
// found anywhere in the text, as documented),
// headers FuzzCheck.h leaves out (NUL in a token, quoting in a label), and parts that cannot be printed (for instance
// a parsed value holding a bare CR).
#include "FuzzCheck.h"

#include <mime/KNMime.h>
#include <mime/internal/KNMimeEntityParse.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using fuzzcheck::check;

// The printed tree the text parses to with the given way of searching, or the error text.
std::string parsedWith(const KNCString& text, KNMimeEntityParse::Search search)
{
    try {
        KNMimeEntityParse parse(text, search);
        return "tree: " + parse.entity(false).asString();
    } catch (const KNxmsg& e) {
        return "error: " + e.why();
    }
}
using fuzzcheck::skip;

const KNCString keptText = "Content-Type: multipart/mixed; boundary=\"k\"\r\n\r\npre\r\n--k\r\nX-A: 1\r\n\r\nkept\r\n--k--\r\n";

constexpr const char* prefixBoundary = "documented: a nested boundary begins with an enclosing one";
constexpr const char* delimiterInText = "documented: a part's text holds an enclosing delimiter inside a line";

// Why the tree is outside the fixed-point promise, or null: a multipart boundary that
// begins with the boundary of a multipart around it, or a header left out by FuzzCheck.h.
const char* outsideFixedPoint(const KNMimePart& root)
{
    struct Level {
        KNMimePart part;
        std::vector<KNCString> enclosing;
    };
    std::vector<Level> pending{{root, {}}};
    while (!pending.empty()) {
        Level level = std::move(pending.back());
        pending.pop_back();
        for (std::size_t i = 0; i < level.part.getHeaderCount(); ++i) {
            if (const char* reason = fuzzcheck::outsideFixedPoint(level.part.getHeader(i)))
                return reason;
        }
        // Delimiters are found anywhere in a line, and a parsed value can print with "--" and
        // a boundary joined that the input kept apart (a quote between them read away).
        if (!level.enclosing.empty()) {
            const KNCString printed = level.part.asString();
            for (const KNCString& outer : level.enclosing) {
                if (printed.find("--" + outer) != KNCString::npos)
                    return delimiterInText;
            }
        }
        if (!level.part.isMultipart())
            continue;
        const KNCString boundary = fuzzcheck::boundaryOf(level.part);
        for (const KNCString& outer : level.enclosing) {
            if (boundary.compare(0, outer.size(), outer) == 0)
                return prefixBoundary;
        }
        level.enclosing.push_back(boundary);
        const KNMimeMultipart multipart(level.part);
        for (std::size_t i = 0; i < multipart.getPartCount(); ++i)
            pending.push_back({multipart.getPart(i), level.enclosing});
    }
    return nullptr;
}

void checkFixedPoint(const KNCString& text, const KNMimePart& part)
{
    KNCString printed;
    try {
        printed = part.asString();
    } catch (const KNxmsg& e) {
        skip("parsed but not printable: " + fuzzcheck::errorId(e));
        return;
    }
    if (const char* reason = outsideFixedPoint(part)) {
        skip(reason);
        return;
    }
    KNMimePart again;
    KNCString error;
    try {
        again.fromString(printed);
    } catch (const KNxmsg& e) {
        error = e.why();
    }
    check("printed part parses", error.empty(), [&] { return error + "\nprinted: " + printed + "\ninput: " + text; });
    const KNCString reprinted = again.asString();
    check("print-parse-print fixed point", reprinted == printed,
          [&] { return "printed: " + printed + "\nreprinted: " + reprinted + "\ninput: " + text; });
    check("reread part equal", again == part, [&] { return printed; });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const KNCString text(reinterpret_cast<const char*>(data), size);
    KNMimePart kept;
    kept.fromString(keptText);
    const KNMimePart sharer = kept;
    KNMimeMultipart keptMultipart(kept);
    bool parsed = true;
    try {
        kept.fromString(text);
    } catch (const KNxmsg&) {
        parsed = false;
    }
    check("sharer keeps the old body", sharer.asString() == keptText, [&] { return text; });
    check("failed parse leaves the handle", parsed || (kept.sharesBodyWith(sharer) && kept.asString() == keptText),
          [&] { return text; });
    // Through a multipart handle, a text that is not multipart is refused and changes nothing.
    try {
        keptMultipart.fromString(text);
        check("multipart handle holds a multipart", keptMultipart.isMultipart(), [&] { return text; });
    } catch (const KNxmsg&) {
        check("failed parse leaves the multipart handle",
              keptMultipart.sharesBodyWith(sharer) && keptMultipart.asString() == keptText, [&] { return text; });
    }
    const std::string direct = parsedWith(text, KNMimeEntityParse::Search::Direct);
    check("indexed delimiter search agrees with the direct one",
          parsedWith(text, KNMimeEntityParse::Search::Nested) == direct &&
              parsedWith(text, KNMimeEntityParse::Search::Indexed) == direct,
          [&] { return text; });
    if (parsed)
        checkFixedPoint(text, kept);
    return 0;
}
