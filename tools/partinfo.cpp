#include "partinfo.h"

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

// The unfolded values of the first header with each of `labels`, found in one pass over the
// part's headers (the tool reads several headers of every part).
template <std::size_t N>
std::array<std::optional<KNCString>, N> headerValues(const KNMimePart& part, const std::array<const char*, N>& labels)
{
    std::array<std::optional<KNCString>, N> values;
    std::array<bool, N> seen{};
    std::size_t left = N;
    const std::size_t count = part.getHeaderCount();
    for (std::size_t i = 0; i < count && left > 0; ++i) {
        const KNMimeHeader header = part.getHeader(i);
        const KNCString label = header.getLabel();
        for (std::size_t k = 0; k < N; ++k) {
            if (seen[k] || !knEqualsIgnoreCase(label, labels[k]))
                continue;
            seen[k] = true;
            --left;
            try { // the value as it prints, before folding: no fold to make and undo
                values[k] = header.body()->getValueAsString();
            } catch (const KNxmsg&) { // a value that cannot be printed; the view reads what it can
                values[k] = KNMimeMessageView::header(part, labels[k]);
            }
        }
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

KNMimeExtendedParameters parametersOf(const std::optional<KNCString>& value)
{
    return value ? KNMimeExtendedParameters::fromHeaderValue(*value) : KNMimeExtendedParameters();
}

// Whether `text` holds `word` in any case. A parameter is looked up only when its name
// appears in the header value: most parts have no name and many no charset.
bool mentions(const std::optional<KNCString>& text, std::string_view word)
{
    if (!text || text->size() < word.size())
        return false;
    const std::string_view value = *text;
    for (std::size_t i = 0; i + word.size() <= value.size(); ++i) {
        if (knToLowerAscii(value[i]) == word[0] && knEqualsIgnoreCase(value.substr(i, word.size()), word))
            return true;
    }
    return false;
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
// the file name comes from the same parameters as the media type and the charset.
PartSummary summarize(const KNMimePart& part, bool withSize)
{
    PartSummary summary;
    static const std::array<const char*, 3> labels = {"Content-Type", "Content-Disposition", "Content-Transfer-Encoding"};
    const auto values = headerValues(part, labels);
    const KNMimeExtendedParameters type = parametersOf(values[0]);
    summary.type = isMediaType(type.getValue()) ? type.getValue() : KNCString("text/plain");
    if (mentions(values[0], "charset"))
        summary.charset = type.get("charset");
    const KNMimeExtendedParameters disposition = parametersOf(values[1]);
    if (!disposition.getValue().empty())
        summary.disposition = disposition.getValue();
    if (mentions(values[1], "filename"))
        summary.filename = disposition.get("filename");
    if (!summary.filename && mentions(values[0], "name"))
        summary.filename = type.get("name");
    const std::optional<KNCString>& encoding = values[2];
    if (encoding)
        summary.encoding = lowerCase(*encoding);
    if (withSize && !part.isMultipart()) {
        summary.size = KNMimeBodyDecoder::decodedSize(part.getBody(), encoding.value_or(KNCString()));
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
