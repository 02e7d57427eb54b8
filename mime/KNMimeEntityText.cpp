#include <mime/internal/KNMimeEntityText.h>

#include <foundation/KNMessage.h>
#include <foundation/KNSubstringFinder.h>
#include <mime/KNMimeContentType.h>
#include <mime/KNMimeContentTypeHeader.h>
#include <mime/KNMimeContentTypeHeaderImp.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeHeaderImp.h>
#include <mime/KNMimeMessages.h>
#include <mime/KNMimeMultipartImp.h>
#include <mime/KNMimeMultipartType.h>
#include <mime/KNMimeStringPartImp.h>
#include <mime/internal/KNMimeEntityParse.h>
#include <mime/internal/KNMimeHeaderLine.h>
#include <mime/internal/KNMimeScan.h>

#include <algorithm>
#include <exception>
#include <vector>

namespace {

constexpr std::string_view crlf = "\r\n";
constexpr std::string_view dashes = "--";

// Room for the headers of most entities; longer blocks grow the list.
constexpr std::size_t headersGuess = 16;

// Parses the header block into `headers` and returns the offset where the body starts. The
// block ends at the first line end followed by another. A physical line starting with a
// blank or tab continues the one before; the fold stays in the text handed to the header,
// which unfolds it itself, so a logical line is one contiguous slice of the text. Lines are
// parsed as their ends are found, in one walk; a text without an empty line is refused with
// the separator error even when a header before it was refused, so a header's error waits
// until the empty line is found.
std::size_t parseHead(std::string_view text, std::vector<KNMimeHeader>& headers)
{
    // A text that opens with a line end has no header block; exactly "\r\n" does not count.
    if (text.size() > crlf.size() && text.substr(0, crlf.size()) == crlf)
        return crlf.size();
    headers.reserve(headersGuess);
    std::exception_ptr refused;
    std::size_t start = 0;
    for (std::size_t e = KNMimeScan::findCrlf(text, 0);; e = KNMimeScan::findCrlf(text, e + crlf.size())) {
        if (e == text.size())
            KNThrow(KNMimeParseError(KNMessage(knmime_MISSING_HEADER_BODY_SEPARATOR())));
        const std::size_t next = e + crlf.size();
        const bool blockEnds = text.substr(next, crlf.size()) == crlf;
        if (!blockEnds && next < text.size() && KNMimeScan::isBlank(text[next]))
            continue;
        if (!refused) {
            try {
                headers.push_back(KNMimeHeaderLine::parse(text.substr(start, e - start)));
            } catch (...) {
                refused = std::current_exception();
            }
        }
        if (blockEnds) {
            if (refused)
                std::rethrow_exception(refused);
            return next + crlf.size();
        }
        start = next;
    }
}

bool firstContentTypeIsMultipart(const std::vector<KNMimeHeader>& headers)
{
    const auto first = std::find_if(headers.begin(), headers.end(), [](const KNMimeHeader& header) {
        return header.body()->hasLabel(KNMimeContentTypeHeader::Label);
    });
    return first != headers.end() && KNMimeEntityText::isMultipartContentType(*first);
}

KNMimePart adoptHeaders(KNMimePartImp* body, std::vector<KNMimeHeader>& headers)
{
    KNMimePart part(body);
    body->adoptHeaders(std::move(headers));
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
