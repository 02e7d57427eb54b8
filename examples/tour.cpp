// The README's tour as one program: every C++ block of the README is a piece of this file,
// copied between the "readme:" marker comments (scripts/check-readme.sh keeps them equal).
// It reads a message file, walks its parts, decodes the last part's body and file name, then
// builds a new message around those bytes, prints it and parses it back.
//
//     knmime_tour examples/sample.eml

#include <mime/KNMime.h>

#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

// readme: read-file
// A message file as the library reads it: its bytes unchanged, except that a file saved with
// LF line ends (as Unix mail tools and editors write them) gets the CRLF ones MIME requires.
KNMimePart readMessage(const std::string& path)
{
    std::ifstream file(path, std::ios::binary); // binary: no line-end translation on any system
    if (!file)
        throw std::runtime_error("cannot open " + path);
    std::ostringstream text;
    text << file.rdbuf();
    KNCString bytes = text.str();
    if (bytes.find("\r\n") == KNCString::npos)
        bytes = KNMimeUtils::replaceLineDelimiter(bytes, "\r\n");

    KNMimePart message;
    message.fromString(bytes); // the whole message: headers, empty line, body
    return message;
}
// readme: end

// readme: find-typed
// The part's first header with the label of the typed header class H, if it has one.
template <class H>
std::optional<H> findTyped(const KNMimePart& part)
{
    const std::size_t i = part.findHeader(H::Label, 0); // ignores case; npos when absent
    if (i == KNCString::npos)
        return std::nullopt;
    return H(part.getHeader(i)); // shares the stored header: nothing is copied
}
// readme: end

// readme: decode-words
// A header value with its encoded words decoded (the bytes stay in their charset).
KNCString decodeHeaderValue(const KNCString& value)
{
    KNCString decoded;
    for (const KNCString& piece : KNMimeUtils::tokenizeHeader(value, false)) {
        KNCString charset;
        decoded += KNMimeUtils::headerDecode(piece, charset); // plain runs come back as they are
    }
    return decoded;
}
// readme: end

// readme: walk
// The media type of a part, as "type/subtype"; text/plain when it has no Content-Type.
KNCString mediaTypeOf(const KNMimePart& part)
{
    const auto header = findTyped<KNMimeContentTypeHeader>(part);
    if (!header)
        return "text/plain";
    const KNMimeContentType type = header->getContentType();
    return type.getMediaType() + "/" + type.getSubType();
}

void printTree(const KNMimePart& part, int depth)
{
    std::cout << std::string(2 * depth, ' ') << mediaTypeOf(part) << '\n';
    if (part.isMultipart()) {
        const KNMimeMultipart multipart(part); // shares the body: nothing is copied
        for (std::size_t i = 0; i < multipart.getPartCount(); ++i)
            printTree(multipart.getPart(i), depth + 1);
    }
}
// readme: end

int tour(const std::string& path)
{
    // readme: parse
    const KNMimePart message = readMessage(path);
    printTree(message, 0);
    // readme: end

    // readme: typed-headers
    const KNMimeMultipart mixed(message);
    const KNMimePart attachment = mixed.getPart(mixed.getPartCount() - 1); // the last part
    const auto disposition = findTyped<KNMimeContentDispositionHeader>(attachment);
    const auto encoding = findTyped<KNMimeContentTransferEncodingHeader>(attachment);
    const KNCString filename =
        disposition ? decodeHeaderValue(disposition->getContentDisposition().getFilename()) : "";
    // readme: end

    // readme: decode-body
    // A part without a Content-Transfer-Encoding header is 7bit: its body is its bytes.
    const KNCString bytes =
        KNMimeUtils::decode(attachment.getBody(), encoding ? encoding->getEncoding() : KNMimeUtils::SevenBit);
    // readme: end
    std::cout << filename << ": " << bytes.size() << " bytes\n\n";
    const KNCString& pdfBytes = bytes;

    // readme: build
    KNMimeMultipart report(KNMimeMultipartType(KNMimeMultipartType::Mixed, "")); // boundary generated
    report.insertHeaderAt(0, KNMimeVersionHeader());
    report.insertHeaderAt(0, KNMimeGenericHeader("Subject", "Quarterly report"));

    KNMimePart text(KNMimeTextType("plain", "utf-8"));
    text.setBody("Hello,\r\nthe report is attached.\r\n");
    report.insertPart(text);

    KNMimePart pdf(KNMimeContentType("application", "pdf", KNMimeParameterList()));
    pdf.insertHeader(KNMimeContentTransferEncodingHeader(KNMimeUtils::Base64));
    pdf.insertHeader(KNMimeContentDispositionHeader(KNMimeContentDisposition("attachment", "report.pdf")));
    pdf.setBody(KNMimeUtils::encode(pdfBytes, KNMimeUtils::Base64));
    report.insertPart(pdf);

    std::cout << report.asString();
    // readme: end

    // readme: round-trip
    KNMimePart copy;
    copy.fromString(report.asString());
    if (copy != report)
        throw std::logic_error("the printed message did not parse back into an equal one");
    // readme: end
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 2) {
        std::cerr << "usage: knmime_tour <message file>\n";
        return 2;
    }
    try {
        return tour(argv[1]);
    } catch (const KNxmsg& error) { // every error of the library
        std::cerr << argv[1] << ": " << error.why() << '\n';
    } catch (const std::exception& error) {
        std::cerr << argv[1] << ": " << error.what() << '\n';
    }
    return 1;
}
