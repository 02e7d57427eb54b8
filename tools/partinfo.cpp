#include "partinfo.h"

namespace {

bool isEncodedWord(const KNCString& piece)
{
    return piece.size() >= 4 && piece.compare(0, 2, "=?") == 0 && piece.compare(piece.size() - 2, 2, "?=") == 0;
}

// A word that does not decode is shown as it stands, as mail readers do, rather than
// failing the whole value.
KNCString decodedWord(const KNCString& word)
{
    try {
        KNCString charset;
        return KNMimeUtils::headerDecode(word, charset);
    } catch (const KNMimeError&) {
        return word;
    }
}

} // namespace

KNCString mediaTypeOf(const KNMimePart& part)
{
    const auto header = firstHeader<KNMimeContentTypeHeader>(part);
    if (!header)
        return "text/plain";
    const KNMimeContentType type = header->getContentType();
    return type.getMediaType() + '/' + type.getSubType();
}

KNCString transferEncodingOf(const KNMimePart& part)
{
    const auto header = firstHeader<KNMimeContentTransferEncodingHeader>(part);
    return header ? header->getEncoding() : KNMimeUtils::SevenBit;
}

KNCString decodedBodyOf(const KNMimePart& part)
{
    return KNMimeUtils::decode(part.getBody(), transferEncodingOf(part));
}

KNCString filenameOf(const KNMimePart& part)
{
    KNCString name;
    if (const auto disposition = firstHeader<KNMimeContentDispositionHeader>(part))
        name = disposition->getContentDisposition().getFilename();
    if (name.empty()) {
        if (const auto type = firstHeader<KNMimeContentTypeHeader>(part))
            name = type->getContentType().getParameterValue("name");
    }
    return decodeEncodedWords(name);
}

KNCString decodeEncodedWords(const KNCString& value)
{
    // tokenizeHeader drops a final plain run of exactly one byte, so a one-character value such
    // as the file name "a" would come back empty. The value goes in with one blank appended,
    // which ends the last plain run (or is dropped after a final encoded word) and is taken
    // off again below.
    const KNCStringList pieces = KNMimeUtils::tokenizeHeader(value + ' ', false);
    KNCString text;
    text.reserve(value.size());
    // Only encoded words go to headerDecode, which looks for a word anywhere in its argument
    // and drops the text around it.
    for (const KNCString& piece : pieces)
        text += isEncodedWord(piece) ? decodedWord(piece) : piece;
    if (!pieces.empty() && !isEncodedWord(pieces.back()))
        text.pop_back();
    return text;
}
