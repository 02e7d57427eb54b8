// The encodings: base64, quoted-printable and encoded words give back every input they
// encode, keep to their documented line lengths, and their decoders fail on nothing but
// the documented error. Dispatch by name agrees with the named functions, in any case.
#include "FuzzCheck.h"

#include <mime/KNMimeError.h>
#include <mime/KNMimeUtils.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

using fuzzcheck::check;

// Lengths of the lines of `text` split at CR LF; true when none exceeds `limit`.
bool linesAtMost(const std::string& text, std::size_t limit)
{
    std::size_t from = 0;
    for (std::size_t end = text.find("\r\n"); end != std::string::npos; end = text.find("\r\n", from)) {
        if (end - from > limit)
            return false;
        from = end + 2;
    }
    return text.size() - from <= limit;
}

// The words of headerEncode decoded one by one and joined (the words hold no blank).
std::string decodeWords(const std::string& words, std::string& charsets)
{
    std::string joined;
    std::size_t from = 0;
    while (from < words.size()) {
        std::size_t end = words.find(' ', from);
        if (end == std::string::npos)
            end = words.size();
        KNCString charset;
        joined += KNMimeUtils::headerDecode(words.substr(from, end - from), charset);
        charsets += charset + ",";
        from = end + 1;
    }
    return joined;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const KNCString text(reinterpret_cast<const char*>(data), size);
    const auto show = [&] { return text; };

    const KNCString base64 = KNMimeUtils::encodeBase64(text);
    check("base64 round trip", KNMimeUtils::decodeBase64(base64) == text, show);
    check("base64 lines of 72", linesAtMost(base64, 72) && base64.find_first_not_of(
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=\r\n") == KNCString::npos, show);
    const KNCString qp = KNMimeUtils::encodeQuotedPrintable(text);
    check("quoted-printable round trip", KNMimeUtils::decodeQuotedPrintable(qp, false) == text, show);
    check("quoted-printable lines of 76", linesAtMost(qp, 76), show);
    // Dispatch by name, in whatever case the name is written.
    check("encode by name", KNMimeUtils::encode(text, "BASE64") == base64 &&
                            KNMimeUtils::encode(text, "Quoted-Printable") == qp &&
                            KNMimeUtils::encode(text, "8Bit") == text && KNMimeUtils::decode(text, "binary") == text,
          show);

    for (const char* letter : {"B", "q"}) {
        const KNCString words = KNMimeUtils::headerEncode(text, "utf-8", letter);
        bool short75 = true;
        for (std::size_t from = 0, end = 0; from < words.size(); from = end + 1) {
            end = words.find(' ', from);
            if (end == KNCString::npos)
                end = words.size();
            short75 = short75 && end - from <= 75;
        }
        check("encoded words of 75", short75, [&] { return words; });
        std::string charsets;
        check("encoded word round trip", decodeWords(words, charsets) == text, [&] { return text + " | " + words; });
        check("encoded word charset", charsets.find_first_not_of("utf-8,") == std::string::npos, show);
    }

    // Arbitrary text: the base64 decoder may refuse it only with its catalogue error, the
    // quoted-printable decoder refuses nothing.
    try {
        (void)KNMimeUtils::decodeBase64(text);
    } catch (const KNMimeParseError& e) {
        check("base64 error", e.why().rfind("[INVALID_BASE64_CHAR] ", 0) == 0, [&] { return e.why(); });
    }
    (void)KNMimeUtils::decodeQuotedPrintable(text, true);
    return 0;
}
