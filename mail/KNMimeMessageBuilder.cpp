#include <mail/KNMimeMessageBuilder.h>

#include <mail/KNMimeBodyDecoder.h>
#include <mail/KNMimeExtendedParameters.h>
#include <mail/KNMimeHeaderText.h>
#include <mime/KNMimeParameter.h>
#include <mime/KNMimeUtils.h>

#include <atomic>
#include <cstdio>
#include <random>

namespace {

constexpr std::size_t headerLineLimit = 78;

// One entity as text: its header lines (each ending CRLF) and its body.
struct Entity {
    KNCString headers;
    KNCString body;

    KNCString text() const { return headers + "\r\n" + body; }
};

// "label: value", folded at blanks so that no line passes 78 characters where the words
// allow it (an encoded word or an address is never cut).
void appendField(KNCString& out, std::string_view label, std::string_view value)
{
    std::size_t column = label.size() + 2;
    out.append(label).append(": ");
    std::size_t p = 0;
    bool first = true;
    while (p < value.size()) {
        std::size_t end = value.find(' ', p + 1);
        if (end == std::string_view::npos)
            end = value.size();
        std::string_view word = value.substr(p, end - p); // holds its leading blank, if any
        if (column + word.size() > headerLineLimit && word.size() > 1) {
            if (first) { // a first word too long for the line starts the next one
                out.pop_back();
                out += "\r\n ";
                column = 1;
            } else {
                out += "\r\n";
                column = 0; // the word's own blank starts the continuation line
            }
        }
        out.append(word);
        column += word.size();
        first = false;
        p = end;
    }
    out += "\r\n";
}

KNCString randomHex(std::size_t digits)
{
    static std::atomic<unsigned> counter{0};
    thread_local std::mt19937_64 random(std::random_device{}() ^ (static_cast<unsigned long long>(++counter) << 32));
    static const char hex[] = "0123456789abcdef";
    KNCString out(digits, '0');
    for (char& c : out)
        c = hex[random() & 15];
    return out;
}

bool isPrintableAscii(std::string_view text)
{
    for (const char c : text) {
        const auto u = static_cast<unsigned char>(c);
        if (u < 0x20 || u > 0x7e)
            return false;
    }
    return true;
}

// Every line end CRLF.
KNCString crlfText(std::string_view text)
{
    return KNMimeBodyDecoder::convertLineEnds(text, KNMimeBodyDecoder::LineEnds::CRLF);
}

// Whether CRLF text can travel as it is: ASCII without control characters other than tab,
// and no line longer than `limit`.
bool isShortAsciiLines(std::string_view text, std::size_t limit)
{
    std::size_t column = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto u = static_cast<unsigned char>(text[i]);
        if (u == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
            column = 0;
            ++i;
            continue;
        }
        if ((u < 0x20 && u != '\t') || u > 0x7e || ++column > limit)
            return false;
    }
    return true;
}

// A leaf holding UTF-8 text: 7bit when it is short ASCII lines, quoted-printable otherwise.
Entity textEntity(const char* subtype, std::string_view text)
{
    const KNCString body = crlfText(text);
    const bool plain = isShortAsciiLines(body, headerLineLimit);
    Entity entity;
    appendField(entity.headers, "Content-Type", KNCString("text/") + subtype + "; charset=\"" + (plain ? "us-ascii" : "utf-8") + "\"");
    appendField(entity.headers, "Content-Transfer-Encoding", plain ? "7bit" : "quoted-printable");
    entity.body = plain ? body : KNMimeUtils::encodeQuotedPrintable(body);
    return entity;
}

// `name="value"` with every character outside printable ASCII written as "_": the plain
// name that mail readers without extended parameters show. (Encoded words inside the quotes,
// which some mailers write, are against the rules and readers report them.)
KNCString plainParameter(std::string_view name, std::string_view utf8)
{
    KNCString plain;
    for (const char c : utf8) {
        const auto u = static_cast<unsigned char>(c);
        if ((u & 0xC0) == 0x80)
            continue; // the rest of a character already written
        plain += (u < 0x20 || u > 0x7e) ? '_' : c;
    }
    return KNCString(name) + "=" + KNMimeUtils::quoteAndEscape(plain);
}

// The file name as a Content-Disposition parameter: plain when it is printable ASCII, else
// in the extended form alone (RFC 2231 sections, each on a line of its own; the plain name in
// Content-Type is the fallback, as a second "filename" would be a duplicate).
KNCString filenameParameters(std::string_view name)
{
    if (isPrintableAscii(name))
        return "; " + plainParameter("filename", name);
    KNCString out;
    for (const KNMimeParameter& section : KNMimeExtendedParameters::encode("filename", name))
        out += "; " + section.getName() + "=" + section.getValue();
    return out;
}

// A leaf holding a file: the bytes as they are when they are short ASCII lines, base64
// otherwise; named in Content-Type and Content-Disposition.
Entity fileEntity(std::string_view name, std::string_view mediaType, std::string_view data, const char* disposition,
                  std::string_view contentId)
{
    const bool plain = !data.empty() && isShortAsciiLines(data, headerLineLimit) && data.size() >= 2 &&
                       data.substr(data.size() - 2) == "\r\n";
    Entity entity;
    appendField(entity.headers, "Content-Type", KNCString(mediaType) + "; " + plainParameter("name", name));
    appendField(entity.headers, "Content-Disposition", disposition + filenameParameters(name));
    if (!contentId.empty())
        appendField(entity.headers, "Content-ID", "<" + KNCString(contentId) + ">");
    appendField(entity.headers, "Content-Transfer-Encoding", plain ? "7bit" : "base64");
    entity.body = plain ? KNCString(data) : KNMimeUtils::encodeBase64(KNCString(data));
    return entity;
}

// A multipart of `parts` with a boundary made from `stem` and a number that none of their
// texts holds ("=_" appears in no quoted-printable or base64 text).
Entity multipartEntity(const char* subtype, const std::vector<Entity>& parts, const KNCString& stem,
                       unsigned& number)
{
    std::vector<KNCString> texts;
    for (const Entity& part : parts)
        texts.push_back(part.text());
    KNCString boundary;
    for (bool clash = true; clash;) {
        boundary = "=_knmime_" + stem + "_" + std::to_string(number++);
        clash = false;
        for (const KNCString& text : texts)
            clash = clash || text.find("--" + boundary) != KNCString::npos;
    }
    Entity entity;
    appendField(entity.headers, "Content-Type", KNCString("multipart/") + subtype + "; boundary=\"" + boundary + "\"");
    for (const KNCString& text : texts)
        entity.body += "--" + boundary + "\r\n" + text + "\r\n";
    entity.body += "--" + boundary + "--\r\n";
    return entity;
}

KNCString domainOf(const KNMimeAddressList& from)
{
    const KNCString domain = from.empty() ? KNCString() : from[0].getDomain();
    return domain.empty() || !isPrintableAscii(domain) ? KNCString("knmime.invalid") : domain;
}

} // namespace

KNMimeMessageBuilder::KNMimeMessageBuilder() : token_(randomHex(24)) {}

KNMimeMessageBuilder& KNMimeMessageBuilder::setFrom(const KNMimeAddressList& from)
{
    from_ = from;
    return *this;
}

KNMimeMessageBuilder& KNMimeMessageBuilder::setTo(const KNMimeAddressList& to)
{
    to_ = to;
    return *this;
}

KNMimeMessageBuilder& KNMimeMessageBuilder::setCc(const KNMimeAddressList& cc)
{
    cc_ = cc;
    return *this;
}

KNMimeMessageBuilder& KNMimeMessageBuilder::setReplyTo(const KNMimeAddressList& replyTo)
{
    replyTo_ = replyTo;
    return *this;
}

KNMimeMessageBuilder& KNMimeMessageBuilder::setSubject(std::string_view subject)
{
    subject_ = KNCString(subject);
    return *this;
}

KNMimeMessageBuilder& KNMimeMessageBuilder::setDate(const KNMimeDate& date)
{
    date_ = date;
    return *this;
}

KNMimeMessageBuilder& KNMimeMessageBuilder::setMessageId(std::string_view messageId)
{
    messageId_ = KNCString(messageId);
    return *this;
}

KNMimeMessageBuilder& KNMimeMessageBuilder::setText(std::string_view text)
{
    text_ = KNCString(text);
    return *this;
}

KNMimeMessageBuilder& KNMimeMessageBuilder::setHtml(std::string_view html)
{
    html_ = KNCString(html);
    return *this;
}

KNCString KNMimeMessageBuilder::addInline(std::string_view name, std::string_view mediaType, std::string_view data,
                                          std::string_view contentId)
{
    KNCString id = contentId.empty() ? randomHex(16) + "@" + domainOf(from_) : KNCString(contentId);
    inline_.push_back(File{KNCString(name), KNCString(mediaType), KNCString(data), id});
    return id;
}

KNMimeMessageBuilder& KNMimeMessageBuilder::addAttachment(std::string_view name, std::string_view mediaType,
                                                          std::string_view data)
{
    attachments_.push_back(File{KNCString(name), KNCString(mediaType), KNCString(data), KNCString()});
    return *this;
}

KNCString KNMimeMessageBuilder::toString() const
{
    // The body: text and HTML as alternatives, the HTML with its inline files as related
    // parts, attachments after the body in a mixed multipart.
    unsigned boundaries = 0;
    const KNCString stem = token_.substr(0, 16);
    std::optional<Entity> html;
    if (html_) {
        html = textEntity("html", *html_);
        if (!inline_.empty()) {
            std::vector<Entity> related{*html};
            for (const File& file : inline_)
                related.push_back(fileEntity(file.name, file.mediaType, file.data, "inline", file.contentId));
            html = multipartEntity("related", related, stem, boundaries);
        }
    }
    Entity body;
    if (text_ && html)
        body = multipartEntity("alternative", {textEntity("plain", *text_), *html}, stem, boundaries);
    else if (html)
        body = *html;
    else
        body = textEntity("plain", text_.value_or(KNCString()));
    std::vector<Entity> mixed{body};
    if (!html)
        for (const File& file : inline_) // nothing shows them inline: they travel as files
            mixed.push_back(fileEntity(file.name, file.mediaType, file.data, "inline", file.contentId));
    for (const File& file : attachments_)
        mixed.push_back(fileEntity(file.name, file.mediaType, file.data, "attachment", KNCString()));
    if (mixed.size() > 1)
        body = multipartEntity("mixed", mixed, stem, boundaries);

    KNCString out;
    const auto addresses = [&out](const char* label, const KNMimeAddressList& list) {
        if (!list.empty())
            appendField(out, label, list.encode());
    };
    addresses("From", from_);
    addresses("To", to_);
    addresses("Cc", cc_);
    addresses("Reply-To", replyTo_);
    if (!subject_.empty())
        appendField(out, "Subject", KNMimeHeaderText::encode(subject_));
    appendField(out, "Date", date_.value_or(KNMimeDate::now()).asString());
    appendField(out, "Message-ID", messageId_.empty() ? "<" + token_ + "@" + domainOf(from_) + ">" : messageId_);
    appendField(out, "MIME-Version", "1.0");
    return out + body.text();
}

KNMimePart KNMimeMessageBuilder::build() const
{
    KNMimePart message;
    message.fromString(toString());
    return message;
}
