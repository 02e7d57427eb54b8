#include <mime/internal/KNMimeEntityText.h>

#include <foundation/KNMessage.h>
#include <foundation/KNSubstringFinder.h>
#include <mime/KNMimeContentType.h>
#include <mime/KNMimeContentTypeHeader.h>
#include <mime/KNMimeContentTypeHeaderImp.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeMessages.h>
#include <mime/KNMimeMultipartImp.h>
#include <mime/KNMimeMultipartType.h>
#include <mime/KNMimeStringPartImp.h>
#include <mime/internal/KNMimeEntityParse.h>
#include <mime/internal/KNMimeHeaderLine.h>

#include <algorithm>
#include <vector>

namespace {

constexpr std::string_view crlf = "\r\n";
constexpr std::string_view emptyLine = "\r\n\r\n";
constexpr std::string_view dashes = "--";

// Cuts the header block, which ends with the line end at `blockEnd`, into logical header
// lines and parses each. A physical line starting with a blank or tab continues the one
// before; the fold stays in the text handed to the header, which unfolds it itself. A
// logical line is therefore one contiguous slice of the text.
std::vector<KNMimeHeader> parseHeaderBlock(std::string_view text, std::size_t blockEnd)
{
    std::vector<KNMimeHeader> headers;
    std::size_t start = 0;
    std::size_t p = 0;
    while (p < blockEnd) {
        const std::size_t e = text.find(crlf, p); // found: the block's own line end is at blockEnd
        p = e + 2;                                // at most blockEnd + 2, inside the empty line
        if (text[p] == ' ' || text[p] == '\t')
            continue;
        headers.push_back(KNMimeHeaderLine::parse(text.substr(start, e - start)));
        start = p;
    }
    return headers;
}

// Offset where the body starts; the parsed headers go to `headers`.
std::size_t parseHead(std::string_view text, std::vector<KNMimeHeader>& headers)
{
    // A text that opens with a line end has no header block; exactly "\r\n" does not count.
    if (text.size() > crlf.size() && text.substr(0, crlf.size()) == crlf)
        return crlf.size();
    const std::size_t separator = text.find(emptyLine);
    if (separator == std::string_view::npos)
        KNThrow(KNMimeParseError(KNMessage(knmime_MISSING_HEADER_BODY_SEPARATOR())));
    headers = parseHeaderBlock(text, separator);
    return separator + emptyLine.size();
}

bool firstContentTypeIsMultipart(const std::vector<KNMimeHeader>& headers)
{
    const auto first = std::find_if(headers.begin(), headers.end(), [](const KNMimeHeader& header) {
        return knEqualsIgnoreCase(header.getLabel(), KNMimeContentTypeHeader::Label);
    });
    return first != headers.end() && KNMimeEntityText::isMultipartContentType(*first);
}

KNMimePart adoptHeaders(KNMimePartImp* body, const std::vector<KNMimeHeader>& headers)
{
    KNMimePart part(body);
    for (const KNMimeHeader& header : headers)
        body->insertHeader(header);
    return part;
}

} // namespace

namespace KNMimeEntityText {

KNMimePart parseEntity(std::string_view text, unsigned enclosingLevels, bool requireMultipart)
{
    KNMimeEntityParse parse(text);
    return parseEntity(text, enclosingLevels, requireMultipart, parse);
}

KNMimePart parseEntity(std::string_view text, unsigned enclosingLevels, bool requireMultipart,
                       KNMimeEntityParse& parse)
{
    std::vector<KNMimeHeader> headers;
    const std::string_view body = text.substr(parseHead(text, headers));

    if (!firstContentTypeIsMultipart(headers)) {
        if (requireMultipart)
            KNThrow(KNMimeError(KNMessage(knmime_INVALID_MULTIPART_CONVERSION())));
        return adoptHeaders(new KNMimeStringPartImp(KNCString(body)), headers);
    }

    const unsigned level = enclosingLevels + 1;
    if (level > MaxNesting)
        KNThrow(KNMimeParseError(KNMessage(knmime_NESTING_TOO_DEEP(), MaxNesting)));
    auto* multipart = new KNMimeMultipartImp;
    KNMimePart part = adoptHeaders(multipart, headers);
    parseMultipartBody(*multipart, body, level, parse);
    return part;
}

void parseMultipartBody(KNMimeMultipartImp& multipart, std::string_view text, unsigned level)
{
    KNMimeEntityParse parse(text);
    parseMultipartBody(multipart, text, level, parse);
}

void parseMultipartBody(KNMimeMultipartImp& multipart, std::string_view text, unsigned level,
                        KNMimeEntityParse& parse)
{
    const KNCString boundary = boundaryOf(multipart);
    const KNSubstringFinder delimiter(KNMimeMultipartImp::boundaryMarker + boundary);
    const std::size_t length = delimiter.needle().size();
    const std::size_t end = text.size();

    std::size_t p = parse.findDelimiter(delimiter, text, 0, level);
    if (p == std::string_view::npos)
        KNThrow(KNMimeParseError(KNMessage(knmime_MISSING_BOUNDARY(), boundary)));
    // The two characters before the first delimiter are its line end; one lone character
    // there is dropped with it.
    if (p >= crlf.size())
        multipart.setPreamble(KNCString(text.substr(0, p - crlf.size())));

    for (;;) {
        // Characters missing at the end of the text never match the closing dashes.
        const std::size_t afterDelimiter = p + length;
        if (text.substr(afterDelimiter, dashes.size()) == dashes)
            return; // closing delimiter: an epilogue is ignored
        // The delimiter line's own line end is skipped unchecked.
        const std::size_t start = std::min(afterDelimiter + crlf.size(), end);
        const std::size_t next = parse.findDelimiter(delimiter, text, start, level);
        // Without a next delimiter the part runs to the end (closing delimiter missing);
        // otherwise it stops before the line end that precedes the next one.
        std::size_t stop = end;
        if (next != std::string_view::npos)
            stop = next >= start + crlf.size() ? next - crlf.size() : start;
        KNMimeEntityParse::appendPart(multipart, parseEntity(text.substr(start, stop - start), level, false, parse));
        if (next == std::string_view::npos)
            return;
        p = next;
    }
}

KNCString boundaryOf(const KNMimePartImp& part)
{
    const std::size_t i = part.findHeader(KNMimeContentTypeHeader::Label, 0);
    if (i == KNCString::npos)
        KNThrow(KNMimeError(KNMessage(knmime_MISSING_HEADER(), KNMimeContentTypeHeader::Label)));
    const KNMimeMultipartType type(KNMimeContentTypeHeader(part.getHeader(i)).getContentType());
    KNCString boundary = type.getBoundary();
    if (boundary.empty())
        KNThrow(KNMimeError(KNMessage(knmime_MISSING_BOUNDARY_PARAMETER())));
    return boundary;
}

bool isMultipartContentType(const KNMimeHeader& header)
{
    if (dynamic_cast<const KNMimeContentTypeHeaderImp*>(header.body()) == nullptr)
        return false;
    return knEqualsIgnoreCase(KNMimeContentTypeHeader(header).getContentType().getMediaType(),
                              KNMimeMultipartType::Multipart);
}

} // namespace KNMimeEntityText
