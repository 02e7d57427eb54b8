// The text utilities: decoders never fail but by the documented error, encoders round-trip.
#include <mime/KNMimeUtils.h>
#include <mime/KNMimeError.h>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const KNCString text(reinterpret_cast<const char*>(data), size);
    if (KNMimeUtils::decodeBase64(KNMimeUtils::encodeBase64(text)) != text)
        __builtin_trap();
    if (KNMimeUtils::decodeQuotedPrintable(KNMimeUtils::encodeQuotedPrintable(text), false) != text)
        __builtin_trap();
    try {
        (void)KNMimeUtils::decodeBase64(text);
    } catch (const KNMimeParseError&) {
    }
    (void)KNMimeUtils::decodeQuotedPrintable(text, true);
    (void)KNMimeUtils::cleanToken(text, true);
    (void)KNMimeUtils::cleanToken(text, false);
    (void)KNMimeUtils::unfoldAndTrim(text);
    (void)KNMimeUtils::fold(text);
    (void)KNMimeUtils::replaceLineDelimiter(text, "\n");
    (void)KNMimeUtils::findDelimiter(text, ';');
    for (const KNCString& piece : KNMimeUtils::tokenizeHeader(text, true)) {
        KNCString charset;
        try {
            (void)KNMimeUtils::headerDecode(piece, charset);
        } catch (const KNMimeError&) {
        }
    }
    try {
        (void)KNMimeUtils::headerEncode(text, "utf-8", "Q");
    } catch (const KNMimeError&) {
    }
    return 0;
}
