#include "partinfo.h"

#include <mime/KNMimeContentDispositionHeaderImp.h>
#include <mime/KNMimeContentTypeHeaderImp.h>
#include <mime/KNMimeHeaderImp.h>

#include "mailinput.h"

#include <mail/KNMimeMail.h>

#include <algorithm>

namespace {

// Whether two names are equal ignoring case; most are written alike, which one comparison of
// the bytes settles.
bool sameName(std::string_view written, std::string_view name)
{
    return written.size() == name.size() && (written == name || knEqualsIgnoreCase(written, name));
}

KNCString lowerCase(KNCString text)
{
    std::transform(text.begin(), text.end(), text.begin(), knToLowerAscii);
    return text;
}

bool isParameterHeader(const KNCString& label)
{
    return knEqualsIgnoreCase(label, "Content-Type") || knEqualsIgnoreCase(label, "Content-Disposition");
}

// The name an RFC 2231 section is a piece of: "name" for "name*1*", "name*" and "name".
KNCString parameterName(const KNCString& written)
{
    return lowerCase(written.substr(0, written.find('*')));
}

// "value; name="decoded"; ..." with each parameter once, continuations joined.
KNCString decodedParameters(const KNCString& value)
{
    const KNMimeExtendedParameters parameters = KNMimeExtendedParameters::fromHeaderValue(value);
    KNCString text = parameters.getValue();
    KNCStringList done;
    for (std::size_t i = 0; i < parameters.getCount(); ++i) {
        const KNCString name = parameterName(parameters.getRaw(i).first);
        if (std::find(done.begin(), done.end(), name) != done.end())
            continue;
        done.push_back(name);
        text += "; " + name + "=\"" + parameters.get(name).value_or(KNCString()) + '"';
    }
    return text;
}

// The first header with each of `labels`, found in one pass over the part's headers (the
// tool reads several headers of every part).
template <std::size_t N>
std::array<std::optional<KNMimeHeader>, N> firstHeaders(const KNMimePart& part, const std::array<std::string_view, N>& labels)
{
    std::array<std::optional<KNMimeHeader>, N> headers;
    std::size_t left = N;
    const std::size_t count = part.getHeaderCount();
    for (std::size_t i = 0; i < count && left > 0; ++i) {
        KNMimeHeader header = part.getHeader(i);
        const KNCString label = header.getLabel();
        for (std::size_t k = 0; k < N; ++k) {
            if (!headers[k] && sameName(label, labels[k])) {
                headers[k] = std::move(header);
                --left;
                break;
            }
        }
    }
    return headers;
}

// The unfolded value of `header` (the first of the part's headers with `label`).
std::optional<KNCString> headerValue(const KNMimePart& part, const KNMimeHeader& header, std::string_view label)
{
    try { // the value as it prints, before folding: no fold to make and undo
        return header.body()->getValueAsString();
    } catch (const KNxmsg&) { // a value that cannot be printed; the view reads what it can
        return KNMimeMessageView::header(part, label);
    }
}

// The unfolded values of the first header with each of `labels`.
template <std::size_t N>
std::array<std::optional<KNCString>, N> headerValues(const KNMimePart& part, const std::array<std::string_view, N>& labels)
{
    const auto headers = firstHeaders(part, labels);
    std::array<std::optional<KNCString>, N> values;
    for (std::size_t k = 0; k < N; ++k) {
        if (headers[k])
            values[k] = headerValue(part, *headers[k], labels[k]);
    }
    return values;
}

// A header value for display in UTF-8. Most values are plain ASCII without encoded words and
// need no decoding at all.
KNCString decodedValue(KNCString value)
{
    const bool plain = std::all_of(value.begin(), value.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    if (plain && value.find("=?") == KNCString::npos)
        return value;
    return KNMimeHeaderText::decode(value);
}

// What the summary reads of a Content-Type or Content-Disposition header: the leading value
// as KNMimeExtendedParameters gives it (trimmed, lower-cased) and the values of up to two
// parameters, decoded to UTF-8.
struct ParameterValues {
    KNCString value;
    std::array<std::optional<KNCString>, 2> parameters;
};

// A parameter value as KNMimeExtendedParameters::get gives a plain one (not RFC 2231): line
// breaks, which printing the header and reading it again drop, left out; encoded words and
// 8-bit bytes decoded. Printable ASCII without an encoded word is itself.
KNCString decodedParameter(KNCString value)
{
    const bool plain = std::all_of(value.begin(), value.end(), [](char c) { return c >= 0x20 && c < 0x7f; });
    if (plain && value.find("=?") == KNCString::npos)
        return value;
    value.erase(std::remove_if(value.begin(), value.end(), [](char c) { return c == '\r' || c == '\n'; }), value.end());
    return KNMimeHeaderText::decode(value);
}

// Reads `names` from the parsed header's own values, giving what printing the header and
// reading the text with KNMimeExtendedParameters would give, without doing either. False
// (with `out` in any state) for another kind of header, one that would not print (a type or
// name that is no token) and one with an RFC 2231 form of a name asked for, whose pieces
// KNMimeExtendedParameters puts together.
bool readParsedParameters(const KNMimeHeaderImp* header, const std::array<std::string_view, 2>& names, ParameterValues& out)
{
    std::optional<KNMimeContentType> contentType;         // hold the value the list belongs to
    std::optional<KNMimeContentDisposition> disposition;
    const KNMimeParameterList* list = nullptr;
    if (const auto* typeHeader = dynamic_cast<const KNMimeContentTypeHeaderImp*>(header)) {
        contentType = typeHeader->getContentType();
        const KNMimeContentTypeImp& type = *contentType->body();
        if (!KNMimeUtils::isToken(type.getMediaType()) || !KNMimeUtils::isToken(type.getSubType()))
            return false;
        out.value.reserve(type.getMediaType().size() + 1 + type.getSubType().size());
        out.value += type.getMediaType();
        out.value += '/';
        out.value += type.getSubType();
        out.value = lowerCase(std::move(out.value));
        list = &type.parameterList();
    } else if (const auto* dispositionHeader = dynamic_cast<const KNMimeContentDispositionHeaderImp*>(header)) {
        disposition = dispositionHeader->getContentDisposition();
        out.value = lowerCase(disposition->body()->getType());
        if (!KNMimeUtils::isToken(out.value))
            return false;
        list = &disposition->body()->parameterList();
    } else {
        return false;
    }
    for (std::size_t i = 0; i < list->getParameterCount(); ++i) {
        const KNMimeParameter parameter = list->getParameter(i);
        const KNCString written = parameter.getName();
        if (!KNMimeUtils::isToken(written))
            return false;
        for (std::size_t k = 0; k < names.size(); ++k) {
            const std::string_view name = names[k];
            if (name.empty())
                continue;
            if (written.size() > name.size() && written[name.size()] == '*' &&
                knEqualsIgnoreCase(std::string_view(written).substr(0, name.size()), name))
                return false;
            if (!out.parameters[k] && sameName(written, name))
                out.parameters[k] = decodedParameter(parameter.getValue());
        }
    }
    return true;
}

// The leading value and the parameters `names` of the header; a second name may be empty.
ParameterValues parameterValues(const KNMimePart& part, const std::optional<KNMimeHeader>& header, std::string_view label,
                                const std::array<std::string_view, 2>& names)
{
    ParameterValues values;
    if (!header || readParsedParameters(header->body(), names, values))
        return values;
    values = ParameterValues();
    const std::optional<KNCString> text = headerValue(part, *header, label);
    const KNMimeExtendedParameters parameters = text ? KNMimeExtendedParameters::fromHeaderValue(*text) : KNMimeExtendedParameters();
    values.value = parameters.getValue();
    for (std::size_t k = 0; k < names.size(); ++k) {
        if (!names[k].empty())
            values.parameters[k] = parameters.get(names[k]);
    }
    return values;
}

// A media type as "type/subtype": a slash with a name on each side and no blank.
bool isMediaType(const KNCString& text)
{
    const std::size_t slash = text.find('/');
    if (slash == KNCString::npos || slash == 0 || slash + 1 == text.size())
        return false;
    return std::none_of(text.begin() + static_cast<std::ptrdiff_t>(slash) + 1, text.end(),
                        [](char c) { return c == ' ' || c == '\t' || c == '/'; });
}

} // namespace

const char* const SummaryHeaders[4] = {"From", "To", "Date", "Subject"};

std::array<std::optional<KNCString>, 4> summaryHeaders(const KNMimePart& message)
{
    static const std::array<std::string_view, 4> labels = {SummaryHeaders[0], SummaryHeaders[1], SummaryHeaders[2], SummaryHeaders[3]};
    std::array<std::optional<KNCString>, 4> values = headerValues(message, labels);
    for (std::optional<KNCString>& value : values) {
        if (value)
            value = decodedValue(std::move(*value));
    }
    return values;
}

// Each header is read once here (tree --json runs this for every part of every message):
// the media type, the charset and the file name come from the parsed headers' own values,
// not from printing them and reading the text again.
PartSummary summarize(const KNMimePart& part, bool withSize)
{
    PartSummary summary;
    static const std::array<std::string_view, 3> labels = {"Content-Type", "Content-Disposition", "Content-Transfer-Encoding"};
    const auto headers = firstHeaders(part, labels);
    ParameterValues type = parameterValues(part, headers[0], labels[0], {"charset", "name"});
    summary.type = isMediaType(type.value) ? std::move(type.value) : KNCString("text/plain");
    summary.charset = std::move(type.parameters[0]);
    ParameterValues disposition = parameterValues(part, headers[1], labels[1], {"filename", ""});
    if (!disposition.value.empty())
        summary.disposition = std::move(disposition.value);
    summary.filename = disposition.parameters[0] ? std::move(disposition.parameters[0]) : std::move(type.parameters[1]);
    const std::optional<KNCString> encoding = headers[2] ? headerValue(part, *headers[2], labels[2]) : std::nullopt;
    if (encoding)
        summary.encoding = lowerCase(*encoding);
    if (withSize && !part.isMultipart()) {
        const KNCString body = part.getBody();
        summary.size = encoding ? KNMimeBodyDecoder::decodedSize(body, *encoding) : body.size();
    }
    return summary;
}


KNCString decodedHeaderLine(const KNMimeHeader& header)
{
    const KNCString line = KNMimeUtils::unfoldAndTrim(header.asString());
    const std::size_t colon = line.find(':');
    if (colon == KNCString::npos)
        return line;
    const KNCString label = line.substr(0, colon);
    const KNCString value = KNMimeUtils::unfoldAndTrim(line.substr(colon + 1));
    return label + ": " + (isParameterHeader(label) ? decodedParameters(value) : decodedValue(value));
}

KNCString describeDefect(const KNMimeDefect& defect)
{
    const KNCString part = defect.path.empty() ? KNCString("the message") : "part " + defect.path;
    return "defect in " + part + ": " + defect.kindName() + " at byte " +
           std::to_string(defect.offset) + ": " + defect.text;
}
