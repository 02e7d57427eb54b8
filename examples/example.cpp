// Parses a message file and prints its part tree: for each part the media type, and for the
// leaves the transfer encoding, the file name and the size of the decoded body.
//
//     knmime_example examples/sample.eml

#include <mime/KNMime.h>

#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>

namespace {

// The part's first header with the label of the typed header class H, if it has one.
template <class H>
std::optional<H> headerOf(const KNMimePart& part)
{
    const std::size_t i = part.findHeader(H::Label, 0);
    if (i == KNCString::npos)
        return std::nullopt;
    return H(part.getHeader(i));
}

// A header value with its encoded words decoded; the bytes stay in their charset (UTF-8 here).
KNCString decodeWords(const KNCString& value)
{
    KNCString text;
    for (const KNCString& piece : KNMimeUtils::tokenizeHeader(value, false)) {
        KNCString charset;
        text += KNMimeUtils::headerDecode(piece, charset); // plain text comes back unchanged
    }
    return text;
}

void printPart(const KNMimePart& part, int depth)
{
    std::cout << std::string(2 * depth, ' ');
    if (const auto type = headerOf<KNMimeContentTypeHeader>(part)) {
        const KNMimeContentType contentType = type->getContentType();
        std::cout << contentType.getMediaType() << '/' << contentType.getSubType();
    } else {
        std::cout << "text/plain"; // the default when a part has no Content-Type
    }

    if (part.isMultipart()) {
        std::cout << '\n';
        const KNMimeMultipart multipart(part); // shares the part's body, copies nothing
        for (std::size_t i = 0; i < multipart.getPartCount(); ++i)
            printPart(multipart.getPart(i), depth + 1);
        return;
    }

    const auto encodingHeader = headerOf<KNMimeContentTransferEncodingHeader>(part);
    const KNCString encoding = encodingHeader ? encodingHeader->getEncoding() : KNMimeUtils::SevenBit;
    std::cout << "  " << encoding;
    if (const auto disposition = headerOf<KNMimeContentDispositionHeader>(part)) {
        const KNCString filename = disposition->getContentDisposition().getFilename();
        if (!filename.empty())
            std::cout << "  \"" << decodeWords(filename) << '"';
    }
    std::cout << "  " << KNMimeUtils::decode(part.getBody(), encoding).size() << " bytes\n";
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 2) {
        std::cerr << "usage: knmime_example <message file>\n";
        return 2;
    }
    std::ifstream file(argv[1], std::ios::binary); // binary: the CRLF line ends must stay
    if (!file) {
        std::cerr << "cannot open " << argv[1] << '\n';
        return 1;
    }
    std::ostringstream text;
    text << file.rdbuf();

    try {
        KNMimePart message;
        message.fromString(text.str());
        const std::size_t subject = message.findHeader("Subject", 0);
        if (subject != KNCString::npos)
            std::cout << "Subject: " << decodeWords(KNMimeGenericHeader(message.getHeader(subject)).getValue()) << "\n\n";
        printPart(message, 0);
    } catch (const KNxmsg& error) {
        std::cerr << argv[1] << ": " << error.why() << '\n';
        return 1;
    }
    return 0;
}
