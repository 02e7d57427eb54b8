#include <mail/KNMimeMessageView.h>

#include <mail/KNMimeExtendedParameters.h>
#include <mail/KNMimeHeaderText.h>
#include <mime/KNMimeContentTransferEncodingHeader.h>
#include <mime/KNMimeHeaderImp.h>
#include <mime/KNMimeMultipart.h>

#include <utility>

namespace {

constexpr std::size_t nestingLimit = 32;
// Deeper multiparts than this are not searched for the main text (no mail nests so deep).
constexpr std::size_t searchDepthLimit = 64;

KNMimeExtendedParameters parametersOf(const KNMimePart& part, std::string_view label)
{
    const auto value = KNMimeMessageView::header(part, label);
    return value ? KNMimeExtendedParameters::fromHeaderValue(*value) : KNMimeExtendedParameters();
}

// The media type of a Content-Type value, or empty when it is no "type/subtype".
KNCString validMediaType(const KNCString& value)
{
    const std::size_t slash = value.find('/');
    if (slash == 0 || slash == KNCString::npos || slash + 1 == value.size())
        return KNCString();
    for (const char c : value) {
        if (c == ' ' || c == '\t')
            return KNCString();
    }
    return value;
}

KNCString mediaTypeIn(const KNMimePart& part, bool inDigest)
{
    const KNCString type = validMediaType(parametersOf(part, "Content-Type").getValue());
    if (!type.empty())
        return type;
    return inDigest ? "message/rfc822" : "text/plain";
}

std::vector<KNMimePart> childrenOf(const KNMimePart& part)
{
    std::vector<KNMimePart> children;
    if (!part.isMultipart())
        return children;
    const KNMimeMultipart multipart(part);
    const std::size_t count = multipart.getPartCount();
    children.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        children.push_back(multipart.getPart(i));
    return children;
}

bool isAttachmentDisposition(const KNMimePart& part)
{
    return KNMimeMessageView::disposition(part) == "attachment";
}

// The main-text search of mainTextPart, bounded in depth.
std::optional<KNMimePart> findText(const KNMimePart& part, const KNCString& preferred, std::size_t depth)
{
    if (depth > searchDepthLimit)
        return std::nullopt;
    const KNCString type = KNMimeMessageView::mediaType(part);
    if (!part.isMultipart()) {
        if ((type == "text/plain" || type == "text/html") && !isAttachmentDisposition(part))
            return part;
        return std::nullopt;
    }
    const std::vector<KNMimePart> children = childrenOf(part);
    if (type == "multipart/alternative") {
        // The last alternative is the richest: take the last of the preferred type, else the
        // last that gives any text.
        std::optional<KNMimePart> fallback;
        for (auto child = children.rbegin(); child != children.rend(); ++child) {
            std::optional<KNMimePart> found = findText(*child, preferred, depth + 1);
            if (!found)
                continue;
            if (KNMimeMessageView::mediaType(*found) == preferred)
                return found;
            if (!fallback)
                fallback = std::move(found);
        }
        return fallback;
    }
    if (type == "multipart/related") {
        if (children.empty())
            return std::nullopt;
        const auto start = parametersOf(part, "Content-Type").get("start");
        if (start) {
            for (const KNMimePart& child : children) {
                const auto id = KNMimeMessageView::header(child, "Content-ID");
                if (id && *id == *start)
                    return findText(child, preferred, depth + 1);
            }
        }
        return findText(children.front(), preferred, depth + 1);
    }
    for (const KNMimePart& child : children) {
        if (isAttachmentDisposition(child))
            continue;
        if (std::optional<KNMimePart> found = findText(child, preferred, depth + 1))
            return found;
    }
    return std::nullopt;
}

} // namespace

KNMimeMessageView::KNMimeMessageView(const KNMimePart& message, NestedMessageOpener opener)
    : message_(message), opener_(std::move(opener))
{
}

void KNMimeMessageView::setNestedMessageOpener(NestedMessageOpener opener)
{
    opener_ = std::move(opener);
}

std::vector<KNMimeMessageView::Entry> KNMimeMessageView::walk() const
{
    struct Pending {
        Entry entry;
        bool inDigest;
        bool listed; // false for the root of a nested message: only its parts are listed
    };
    std::vector<Entry> entries;
    std::vector<Pending> stack;
    stack.push_back({Entry{KNCString(), message_, KNCString(), KNCString(), 0, 0}, false, true});
    while (!stack.empty()) {
        Pending current = std::move(stack.back());
        stack.pop_back();
        Entry& entry = current.entry;
        entry.mediaType = mediaTypeIn(entry.part, current.inDigest);
        const KNCString prefix = entry.path.empty() ? KNCString() : entry.path + ".";

        std::vector<KNMimePart> children = childrenOf(entry.part);
        const bool digest = entry.mediaType == "multipart/digest";
        if (!current.listed && children.empty()) {
            // A nested message that is a single part: listed as part 1 of the message.
            entry.path = prefix + "1";
            ++entry.depth;
            current.listed = true;
        }
        if (current.listed) {
            if (children.empty() && opener_ && entry.mediaType == "message/rfc822" && entry.nesting < nestingLimit) {
                if (std::optional<KNMimePart> nested = opener_(entry.part)) {
                    stack.push_back({Entry{entry.path, std::move(*nested), KNCString(), entry.mediaType, entry.depth,
                                           entry.nesting + 1},
                                     false, false});
                }
            }
            entries.push_back(entry);
        }
        for (std::size_t i = children.size(); i-- > 0;) {
            stack.push_back({Entry{prefix + std::to_string(i + 1), std::move(children[i]), KNCString(),
                                   entry.mediaType, entry.depth + 1, entry.nesting},
                             digest, true});
        }
    }
    return entries;
}

std::optional<KNMimePart> KNMimeMessageView::mainTextPart(TextPreference preference) const
{
    return findText(message_, preference == TextPreference::Html ? "text/html" : "text/plain", 0);
}

std::optional<KNCString> KNMimeMessageView::mainText(TextPreference preference,
                                                     KNMimeBodyDecoder::LineEnds lineEnds) const
{
    const std::optional<KNMimePart> part = mainTextPart(preference);
    if (!part)
        return std::nullopt;
    return KNMimeBodyDecoder::text(*part, lineEnds).text;
}

std::vector<KNMimeMessageView::Attachment> KNMimeMessageView::attachments() const
{
    std::vector<Attachment> result;
    KNMimeMessageView plain(message_);
    const std::vector<Entry> entries = plain.walk();
    for (std::size_t k = 0; k < entries.size(); ++k) {
        const Entry& entry = entries[k];
        if (entry.part.isMultipart())
            continue;
        const std::optional<KNCString> name = filename(entry.part);
        const KNCString kind = disposition(entry.part);
        const bool text = entry.mediaType == "text/plain" || entry.mediaType == "text/html";
        if (text && !name && kind != "attachment")
            continue; // a text body (an alternative, or a text between attachments)
        if (k == 0 && !name && kind != "attachment")
            continue; // a single-part message is its own body
        Attachment attachment;
        attachment.path = entry.path;
        attachment.filename = name.value_or(KNCString());
        attachment.mediaType = entry.mediaType;
        attachment.decodedSize = KNMimeBodyDecoder::decode(entry.part).data.size();
        attachment.isInline = kind == "inline" || (kind.empty() && entry.parentType == "multipart/related");
        attachment.part = entry.part;
        result.push_back(std::move(attachment));
    }
    return result;
}

std::optional<KNCString> KNMimeMessageView::header(const KNMimePart& part, std::string_view label)
{
    try {
        const std::size_t i = part.findHeader(KNCString(label), 0);
        if (i == KNCString::npos)
            return std::nullopt;
        const KNMimeHeader header = part.getHeader(i);
        try {
            return header.body()->getValueAsString();
        } catch (const KNxmsg&) {
            // An encoding name that is no token ("quoted printable") is kept but not printed.
            if (!KNMimeContentTransferEncodingHeader::acceptsLabel(header.getLabel()))
                throw;
            return KNMimeContentTransferEncodingHeader(header).getEncoding();
        }
    } catch (const KNxmsg&) {
        return std::nullopt;
    }
}

std::optional<KNCString> KNMimeMessageView::headerText(const KNMimePart& part, std::string_view label)
{
    const std::optional<KNCString> value = header(part, label);
    if (!value)
        return std::nullopt;
    return KNMimeHeaderText::decode(*value);
}

KNCString KNMimeMessageView::mediaType(const KNMimePart& part)
{
    return mediaTypeIn(part, false);
}

std::optional<KNCString> KNMimeMessageView::filename(const KNMimePart& part)
{
    if (auto name = parametersOf(part, "Content-Disposition").get("filename"))
        return name;
    return parametersOf(part, "Content-Type").get("name");
}

KNCString KNMimeMessageView::disposition(const KNMimePart& part)
{
    return parametersOf(part, "Content-Disposition").getValue();
}
