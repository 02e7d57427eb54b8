#include "partinfo.h"

#include <mime/KNMimeContentDispositionHeaderImp.h>
#include <mime/KNMimeContentTypeHeaderImp.h>
#include <mime/KNMimeHeaderImp.h>

#include "mailinput.h"

#include <mail/KNMimeMail.h>

#include <algorithm>
#include <cctype>

namespace {

KNCString lowerCase(KNCString text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
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
std::array<std::optional<KNMimeHeader>, N> firstHeaders(const KNMimePart& part, const std::array<const char*, N>& labels)
{
    std::array<std::optional<KNMimeHeader>, N> headers;
    std::size_t left = N;
    const std::size_t count = part.getHeaderCount();
    for (std::size_t i = 0; i < count && left > 0; ++i) {
        KNMimeHeader header = part.getHeader(i);
        const KNCString label = header.getLabel();
        for (std::size_t k = 0; k < N; ++k) {
            if (!headers[k] && knEqualsIgnoreCase(label, labels[k])) {
                headers[k] = std::move(header);
                --left;
                break;
            }
        }
    }
    return headers;
}

// The unfolded value of `header` (the first of the part's headers with `label`).
std::optional<KNCString> headerValue(const KNMimePart& part, const KNMimeHeader& header, const char* label)
{
    try { // the value as it prints, before folding: no fold to make and undo
        return header.body()->getValueAsString();
    } catch (const KNxmsg&) { // a value that cannot be printed; the view reads what it can
        return KNMimeMessageView::header(part, label);
    }
}

// The unfolded values of the first header with each of `labels`.
template <std::size_t N>
std::array<std::optional<KNCString>, N> headerValues(const KNMimePart& part, const std::array<const char*, N>& labels)
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
KNCString decodedValue(const KNCString& value)
{
    const bool plain = std::all_of(value.begin(), value.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    if (plain && value.find("=?") == KNCString::npos)
        return value;
    return KNMimeHeaderText::decode(value);
}

// The leading value and the parameters of a parsed Content-Type or Content-Disposition, as
// KNMimeExtendedParameters reads them from the printed value: the leading tokens lower-cased,
// each parameter under its own name with its value (printed quoted) without line breaks.
// Nothing when the header is of another kind or would not print (a name that is no token).
std::optional<KNMimeExtendedParameters> typedParameters(const KNMimeHeaderImp* header)
{
    KNCString value;
    KNMimeParameterList parameters;
    if (const auto* type = dynamic_cast<const KNMimeContentTypeHeaderImp*>(header)) {
        const KNMimeContentType contentType = type->getContentType();
        const KNMimeContentTypeImp& imp = *contentType.body();
        if (!KNMimeUtils::isToken(imp.getMediaType()) || !KNMimeUtils::isToken(imp.getSubType()))
            return std::nullopt;
        value = lowerCase(imp.getMediaType() + '/' + imp.getSubType());
        parameters = imp.parameterList();
    } else if (const auto* disposition = dynamic_cast<const KNMimeContentDispositionHeaderImp*>(header)) {
        const KNMimeContentDisposition contentDisposition = disposition->getContentDisposition();
        const KNMimeContentDispositionImp& imp = *contentDisposition.body();
        value = lowerCase(imp.getType());
        if (!KNMimeUtils::isToken(value))
            return std::nullopt;
        parameters = imp.parameterList();
    } else {
        return std::nullopt;
    }
    KNMimeExtendedParameters result;
    result.setValue(value);
    for (std::size_t i = 0; i < parameters.getParameterCount(); ++i) {
        const KNMimeParameter parameter = parameters.getParameter(i);
        const KNCString name = parameter.getName();
        if (!KNMimeUtils::isToken(name))
            return std::nullopt;
        KNCString text = parameter.getValue();
        text.erase(std::remove_if(text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n'; }), text.end());
        result.add(name, text);
    }
    return result;
}

// The parameters of the header, read from the parsed header where possible and else from
// its printed value (or what the view reads of it).
KNMimeExtendedParameters parametersOf(const KNMimePart& part, const std::optional<KNMimeHeader>& header, const char* label)
{
    if (!header)
        return KNMimeExtendedParameters();
    if (std::optional<KNMimeExtendedParameters> typed = typedParameters(header->body()))
        return std::move(*typed);
    const std::optional<KNCString> value = headerValue(part, *header, label);
    return value ? KNMimeExtendedParameters::fromHeaderValue(*value) : KNMimeExtendedParameters();
}

// A media type as "type/subtype": a slash with a name on each side and no blank.
bool isMediaType(const KNCString& text)
{
    const std::size_t slash = text.find('/');
    return slash != KNCString::npos && slash > 0 && slash + 1 < text.size() &&
           text.find_first_of(" \t/", slash + 1) == KNCString::npos;
}

} // namespace

const char* const SummaryHeaders[4] = {"From", "To", "Date", "Subject"};

std::array<std::optional<KNCString>, 4> summaryHeaders(const KNMimePart& message)
{
    static const std::array<const char*, 4> labels = {SummaryHeaders[0], SummaryHeaders[1], SummaryHeaders[2], SummaryHeaders[3]};
    std::array<std::optional<KNCString>, 4> values = headerValues(message, labels);
    for (std::optional<KNCString>& value : values) {
        if (value)
            value = decodedValue(*value);
    }
    return values;
}

// Each header is read once here (tree --json runs this for every part of every message):
// the media type, the charset and the file name come from the parsed headers' own values,
// not from printing them and reading the text again.
PartSummary summarize(const KNMimePart& part, bool withSize)
{
    PartSummary summary;
    static const std::array<const char*, 3> labels = {"Content-Type", "Content-Disposition", "Content-Transfer-Encoding"};
    const auto headers = firstHeaders(part, labels);
    const KNMimeExtendedParameters type = parametersOf(part, headers[0], labels[0]);
    summary.type = isMediaType(type.getValue()) ? type.getValue() : KNCString("text/plain");
    summary.charset = type.get("charset");
    const KNMimeExtendedParameters disposition = parametersOf(part, headers[1], labels[1]);
    if (!disposition.getValue().empty())
        summary.disposition = disposition.getValue();
    summary.filename = disposition.get("filename");
    if (!summary.filename)
        summary.filename = type.get("name");
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
