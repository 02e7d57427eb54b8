#ifndef KN_MAIL_KNMIMEMESSAGEBUILDER_H
#define KN_MAIL_KNMIMEMESSAGEBUILDER_H

/// @file
/// Building a complete message from addresses, a subject, text, HTML and files.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>
#include <mail/KNMimeAddressList.h>
#include <mail/KNMimeDate.h>
#include <mime/KNMimePart.h>

#include <optional>
#include <string_view>
#include <vector>

/// Builds a complete message ready to send: the caller gives addresses, a subject, a text
/// and an HTML body, inline images and attachments, all text in UTF-8; the builder chooses
/// the structure (multipart/alternative for text and HTML, multipart/related for inline
/// images, multipart/mixed for attachments), the transfer encodings (7bit for short ASCII
/// lines, quoted-printable for text with 8-bit bytes or long lines, base64 for binary data),
/// and writes non-ASCII header text as encoded words that never split a character and file
/// names in the extended form (RFC 2231) with a plain ASCII fallback in Content-Type. No line is longer than 78
/// characters in the headers or 998 anywhere. KNMimeReader reads the result without defects.
class KNMIME_EXPORT KNMimeMessageBuilder {
public:
    /// An empty message: give it at least a From and a body before writing it. The builder
    /// draws its Message-ID and boundaries here, so every write gives the same text.
    KNMimeMessageBuilder();

    /// Sets From.
    KNMimeMessageBuilder& setFrom(const KNMimeAddressList& from);
    /// Sets To.
    KNMimeMessageBuilder& setTo(const KNMimeAddressList& to);
    /// Sets Cc (none by default).
    KNMimeMessageBuilder& setCc(const KNMimeAddressList& cc);
    /// Sets Reply-To (none by default).
    KNMimeMessageBuilder& setReplyTo(const KNMimeAddressList& replyTo);
    /// Sets the subject, UTF-8.
    KNMimeMessageBuilder& setSubject(std::string_view subject);
    /// Sets the Date; the time of writing when not set.
    KNMimeMessageBuilder& setDate(const KNMimeDate& date);
    /// Sets the Message-ID, given with its angle brackets; a fresh one when not set.
    KNMimeMessageBuilder& setMessageId(std::string_view messageId);
    /// Sets the plain-text body, UTF-8 with any line ends (written as CRLF).
    KNMimeMessageBuilder& setText(std::string_view text);
    /// Sets the HTML body, UTF-8 with any line ends (written as CRLF).
    KNMimeMessageBuilder& setHtml(std::string_view html);
    /// Adds an image (or other file) the HTML shows inline and returns its Content-ID, for
    /// the HTML to use as "cid:" + the returned id: `contentId` when given (without angle
    /// brackets), a fresh one otherwise. `name` is UTF-8.
    KNCString addInline(std::string_view name, std::string_view mediaType, std::string_view data,
                        std::string_view contentId = {});
    /// Adds an attachment: its file name (UTF-8), media type ("application/pdf") and bytes.
    KNMimeMessageBuilder& addAttachment(std::string_view name, std::string_view mediaType, std::string_view data);

    /// The message as text with CRLF line ends: what to send or store.
    KNCString toString() const;
    /// The same message as a part tree (the text read back by the strict parser).
    KNMimePart build() const;

private:
    struct File {
        KNCString name;
        KNCString mediaType;
        KNCString data;
        KNCString contentId; // inline files only
    };

    KNMimeAddressList from_;
    KNMimeAddressList to_;
    KNMimeAddressList cc_;
    KNMimeAddressList replyTo_;
    KNCString subject_;
    std::optional<KNMimeDate> date_;
    KNCString messageId_;
    KNCString token_; // random hex: the Message-ID's left part and the boundaries' stem
    std::optional<KNCString> text_;
    std::optional<KNCString> html_;
    std::vector<File> inline_;
    std::vector<File> attachments_;
};

#endif
