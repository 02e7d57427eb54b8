#include "partinfo.h"

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

} // namespace

const char* const SummaryHeaders[4] = {"From", "To", "Date", "Subject"};

PartSummary summarize(const KNMimePart& part, bool withSize)
{
    PartSummary summary;
    summary.type = KNMimeMessageView::mediaType(part);
    if (const auto contentType = KNMimeMessageView::header(part, "Content-Type"))
        summary.charset = KNMimeExtendedParameters::fromHeaderValue(*contentType).get("charset");
    if (const auto encoding = KNMimeMessageView::header(part, "Content-Transfer-Encoding"))
        summary.encoding = lowerCase(*encoding);
    KNCString disposition = KNMimeMessageView::disposition(part);
    if (!disposition.empty())
        summary.disposition = std::move(disposition);
    summary.filename = KNMimeMessageView::filename(part);
    if (withSize && !part.isMultipart())
        summary.size = KNMimeBodyDecoder::decode(part).data.size();
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
    return label + ": " + (isParameterHeader(label) ? decodedParameters(value) : KNMimeHeaderText::decode(value));
}

KNCString describeDefect(const KNMimeDefect& defect)
{
    const KNCString part = defect.path.empty() ? KNCString("the message") : "part " + defect.path;
    return "defect in " + part + ": " + defect.kindName() + " at byte " +
           std::to_string(defect.offset) + ": " + defect.text;
}
