#ifndef KN_MAIL_KNMIMEMESSAGEVIEW_H
#define KN_MAIL_KNMIMEMESSAGEVIEW_H

// A message read the way people read mail: its parts walked depth first with their paths,
// the main text body, the attachments, and header lookups that return an empty optional.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>
#include <foundation/KNxmsg.h>
#include <mail/KNMimeBodyDecoder.h>
#include <mime/KNMimePart.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

/// A read-only view of a parsed message (any KNMimePart tree, from the strict parser or a
/// forgiving reader). Nothing here throws for odd content: a header that cannot be read is
/// absent, a body that cannot be decoded is given as stored.
class KNMIME_EXPORT KNMimeMessageView {
public:
    /// Given a message/rfc822 leaf, the root part of the message it holds, or nothing to
    /// leave the leaf unopened.
    using NestedMessageOpener = std::function<std::optional<KNMimePart>(const KNMimePart&)>;

    /// Which text the main body is chosen as, where a message offers both.
    enum class TextPreference {
        Plain, ///< text/plain preferred, text/html when there is no plain text
        Html   ///< text/html preferred, text/plain when there is no HTML
    };

    /// One part met by walk().
    struct Entry {
        /// "" for the message, "1", "2" for its parts, "1.2" for the second part of the first;
        /// the parts of an opened nested message at path N are numbered N.1, N.2, ...
        KNCString path;
        /// The part (sharing its body with the message).
        KNMimePart part;
        /// The lower-cased media type "type/subtype", with the defaults of its context
        /// (text/plain, or message/rfc822 inside multipart/digest).
        KNCString mediaType;
        /// The media type of the enclosing multipart (message/rfc822 for the parts of an opened
        /// nested message, empty for the message).
        KNCString parentType;
        /// 0 for the message, 1 for its parts, ...
        std::size_t depth = 0;
        /// How many opened nested messages enclose the part (0 for the message's own parts).
        std::size_t nesting = 0;
    };

    /// One attachment listed by attachments().
    struct Attachment {
        /// The path of the part, as walk() gives it.
        KNCString path;
        /// The file name in UTF-8 (empty when the part names none).
        KNCString filename;
        /// The lower-cased media type "type/subtype".
        KNCString mediaType;
        /// The size in bytes of the decoded body.
        std::size_t decodedSize = 0;
        /// True when the part is meant to be shown in the message (Content-Disposition inline,
        /// or no disposition inside multipart/related), false for a real attachment.
        bool isInline = false;
        /// The part itself.
        KNMimePart part;
    };

    /// A view of `message`; `opener`, when given, opens message/rfc822 parts for walk().
    explicit KNMimeMessageView(const KNMimePart& message, NestedMessageOpener opener = nullptr);

    /// The message this view reads.
    const KNMimePart& getMessage() const { return message_; }
    /// Sets (or clears, with nullptr) the opener of message/rfc822 parts.
    void setNestedMessageOpener(NestedMessageOpener opener);

    /// Every part depth first, the message first, each with its path. Deep trees are walked
    /// without recursion; nested messages are opened at most 32 levels deep. What the opener
    /// throws is passed on.
    std::vector<Entry> walk() const;
    /// The part holding the main text, chosen as mail readers do: in multipart/alternative the
    /// last part of the preferred type, in multipart/related the start part, in other
    /// multiparts the first part that gives a text and is no attachment.
    std::optional<KNMimePart> mainTextPart(TextPreference preference = TextPreference::Plain) const;
    /// The main text in UTF-8 (see mainTextPart and KNMimeBodyDecoder::text).
    std::optional<KNCString> mainText(TextPreference preference = TextPreference::Plain,
                                      KNMimeBodyDecoder::LineEnds lineEnds = KNMimeBodyDecoder::LineEnds::LF) const;
    /// The leaves that are no text body: parts with a file name or disposition "attachment",
    /// and leaves that are not text/plain or text/html; in walk order, not entering nested
    /// messages.
    std::vector<Attachment> attachments() const;
    /// The raw value of the message's first header `label`.
    std::optional<KNCString> header(std::string_view label) const { return header(message_, label); }
    /// The value of the message's first header `label` decoded for display in UTF-8.
    std::optional<KNCString> headerText(std::string_view label) const { return headerText(message_, label); }

    /// The value of the first header `label` (ignoring case) of `part` as it reads after
    /// unfolding, or nothing when the part has none or its value cannot be printed.
    static std::optional<KNCString> header(const KNMimePart& part, std::string_view label);
    /// header() decoded for display in UTF-8 (KNMimeHeaderText::decode).
    static std::optional<KNCString> headerText(const KNMimePart& part, std::string_view label);
    /// The first header of `part` with the label of the typed header class H
    /// (KNMimeContentTypeHeader, ...), or nothing when there is none or it is of another class.
    template <class H>
    static std::optional<H> typedHeader(const KNMimePart& part)
    {
        const std::size_t i = part.findHeader(H::Label, 0);
        if (i == KNCString::npos)
            return std::nullopt;
        try {
            H typed(part.getHeader(i));
            typed.body(); // refuses a body of another class
            return typed;
        } catch (const KNxmsg&) {
            return std::nullopt;
        }
    }
    /// The lower-cased "type/subtype" of the part's Content-Type, text/plain when it has none
    /// or it cannot be read.
    static KNCString mediaType(const KNMimePart& part);
    /// The part's file name in UTF-8: the Content-Disposition filename (RFC 2231, encoded words
    /// or plain), else the Content-Type name; nothing when neither is given.
    static std::optional<KNCString> filename(const KNMimePart& part);
    /// The lower-cased Content-Disposition type ("inline", "attachment"), empty when none.
    static KNCString disposition(const KNMimePart& part);

private:
    KNMimePart message_;
    NestedMessageOpener opener_;
};

#endif
