#include <mail/KNMimeBodyDecoder.h>

#include <mail/KNMimeCharset.h>
#include <mail/KNMimeExtendedParameters.h>
#include <mail/KNMimeMessageView.h>
#include <mail/internal/KNMimeMailScan.h>
#include <mime/KNMimePart.h>
#include <mime/internal/KNMimeCodec.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace {

using KNMimeMailScan::isBlank;

constexpr unsigned char base64Skip = 0x80;
constexpr unsigned char base64Pad = 0x81;

// Byte to 6-bit value; '=' ends the data, every other byte outside the alphabet is skipped.
struct Base64Table {
    unsigned char values[256] = {};

    constexpr Base64Table()
    {
        constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        for (auto& v : values)
            v = base64Skip;
        for (unsigned i = 0; i < 64; ++i)
            values[static_cast<unsigned char>(alphabet[i])] = static_cast<unsigned char>(i);
        values[static_cast<unsigned char>('=')] = base64Pad;
    }
};

constexpr Base64Table base64;

// Whether all eight bytes of `word` are base64 characters, tested on the word at once: for
// bytes below 0x80, adding 0x80 - lo to each sets its top bit exactly when it is at least lo,
// with no carry into the next byte.
bool isBase64Word(std::uint64_t word)
{
    constexpr std::uint64_t ones = 0x0101010101010101u;
    constexpr std::uint64_t tops = 0x8080808080808080u;
    if (word & tops)
        return false;
    auto atLeast = [](std::uint64_t w, unsigned lo) { return w + (0x80 - lo) * ones; };
    auto between = [&](std::uint64_t w, unsigned lo, unsigned hi) { return atLeast(w, lo) & ~atLeast(w, hi + 1); };
    const std::uint64_t letters = between(word | 0x20 * ones, 'a', 'z');              // A-Z and a-z
    const std::uint64_t signs = between(word, '+', '9') & ~between(word, ',', '.'); // + / 0-9
    return ((letters | signs) & tops) == tops;
}

// The name with comments, quotes, blanks, '-' and '_' removed and letters lower-cased.
KNCString squeezedName(std::string_view name)
{
    KNCString out;
    out.reserve(name.size());
    int comment = 0;
    for (const char c : name) {
        if (c == '(') {
            ++comment;
        } else if (c == ')') {
            if (comment > 0)
                --comment;
        } else if (comment == 0 && c != '"' && c != '-' && c != '_' && !isBlank(c) && c != '\r' && c != '\n') {
            out += knToLowerAscii(c);
        }
    }
    return out;
}

// Counts the bytes a decoder would write, for a decoded size without the decoded copy: the
// decoder writes them into a small scratch buffer, written over again and again (it asks
// for at most 128 bytes of room at a time).
class ByteCount {
public:
    char* room(std::size_t n)
    {
        if (n > sizeof(scratch_) - used_) {
            counted_ += used_;
            used_ = 0;
        }
        return scratch_ + used_;
    }
    void advance(char* w) noexcept { used_ = static_cast<std::size_t>(w - scratch_); }
    std::size_t size() const noexcept { return counted_ + used_; }

private:
    char scratch_[512];
    std::size_t used_ = 0;
    std::size_t counted_ = 0;
};

// Decodes the escapes of a line's content [i, contentEnd) of `text` into `out`, which hands
// out room (room/advance): a string for the decoded bytes, or a count of them.
template <class Out>
void readQuotedPrintableContent(std::string_view text, std::size_t i, std::size_t contentEnd, Out& out)
{
    const auto* const p = reinterpret_cast<const unsigned char*>(text.data());
    const auto* const hex = KNMimeCodec::hexValues.values;
    // 64 bytes at a time while 64 + copySlack are left in the text, so that the short copies
    // and the escapes read inside it: runs between the '=' are copied whole.
    while (contentEnd - i >= 3 && text.size() - i >= 64 + KNMimeCodec::copySlack) {
        const unsigned char* const b = p + i;
        const std::size_t length = std::min<std::size_t>(64, contentEnd - i);
        char* w = out.room(64 + 2 * KNMimeCodec::copySlack);
        std::uint64_t marks = KNMimeCodec::positionsOf(b, '=');
        if (length < 64)
            marks &= (std::uint64_t{1} << length) - 1;
        std::size_t at = 0;
        // Branches rather than selects: the usual valid escape is predicted, and the next
        // one does not wait for the digits of this one to be read.
        for (; marks != 0; marks &= marks - 1) {
            const std::size_t k = KNMimeCodec::lowestBit(marks);
            if (k < at)
                continue; // a digit of the escape before
            w = KNMimeCodec::copyShort(w, b + at, k - at);
            const unsigned high = hex[b[k + 1]];
            const unsigned low = hex[b[k + 2]];
            if ((high | low) < 16 && k + 3 <= contentEnd - i) {
                *w++ = static_cast<char>(high << 4 | low);
                at = k + 3;
            } else {
                *w++ = '='; // an invalid escape stays as it stands
                at = k + 1;
            }
        }
        if (at < length) {
            w = KNMimeCodec::copyShort(w, b + at, length - at);
            at = length;
        }
        i += at;
        out.advance(w);
    }
    // The rest a character at a time.
    char* w = out.room(contentEnd - i);
    while (i < contentEnd) {
        const unsigned high = contentEnd - i >= 3 && p[i] == '=' ? hex[p[i + 1]] : 0xFF;
        const unsigned low = high < 16 ? hex[p[i + 2]] : 0xFF;
        if ((high | low) < 16) {
            *w++ = static_cast<char>(high << 4 | low);
            i += 3;
        } else {
            *w++ = static_cast<char>(p[i++]); // an invalid escape stays as it stands
        }
    }
    out.advance(w);
}

// Decodes quoted-printable `text` into `out` (see readQuotedPrintableContent), a line at a
// time: blanks at a line end are dropped, and an '=' ending the line makes it a soft break.
template <class Out>
void readQuotedPrintable(std::string_view text, Out& out)
{
    std::size_t pos = 0;
    while (pos < text.size()) {
        std::size_t lineEnd = text.find('\n', pos);
        const bool hasBreak = lineEnd != std::string_view::npos;
        if (!hasBreak)
            lineEnd = text.size();
        std::size_t contentEnd = lineEnd;
        const bool crlf = hasBreak && contentEnd > pos && text[contentEnd - 1] == '\r';
        if (crlf)
            --contentEnd;
        while (contentEnd > pos && isBlank(text[contentEnd - 1]))
            --contentEnd; // blanks at a line end were added in transport
        const bool softBreak = contentEnd > pos && text[contentEnd - 1] == '=';
        if (softBreak)
            --contentEnd;
        readQuotedPrintableContent(text, pos, contentEnd, out);
        if (hasBreak && !softBreak) {
            char* w = out.room(2);
            if (crlf)
                *w++ = '\r';
            *w++ = '\n';
            out.advance(w);
        }
        pos = hasBreak ? lineEnd + 1 : text.size();
    }
}

} // namespace

KNMimeBodyDecoder::Encoding KNMimeBodyDecoder::encodingByName(std::string_view name)
{
    // The usual spellings as they stand, without squeezing the name first.
    static constexpr std::pair<std::string_view, Encoding> usual[] = {
        {"7bit", Encoding::Identity}, {"8bit", Encoding::Identity}, {"base64", Encoding::Base64},
        {"quoted-printable", Encoding::QuotedPrintable}};
    for (const auto& [spelling, encoding] : usual) {
        if (name.size() == spelling.size() && (name == spelling || knEqualsIgnoreCase(name, spelling)))
            return encoding;
    }
    const KNCString squeezed = squeezedName(name);
    const std::string_view n = squeezed; // compared by length first
    if (n.empty() || n == "7bit" || n == "8bit" || n == "binary" || n == "7bits" || n == "8bits")
        return Encoding::Identity;
    if (n == "quotedprintable" || n == "qp")
        return Encoding::QuotedPrintable;
    if (n == "base64" || n == "b64")
        return Encoding::Base64;
    if (n == "xuuencode" || n == "uuencode" || n == "xuue" || n == "uue")
        return Encoding::UUEncode;
    return Encoding::Unknown;
}

KNCString KNMimeBodyDecoder::decodeBase64(std::string_view text)
{
    constexpr std::size_t block = 16384;
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const std::size_t end = text.size();
    const auto* const table = base64.values;
    KNCString out;
    KNMimeCodec::KNMimeCodecOutput o(out, end / 4 * 3 + 16);
    std::uint32_t acc = 0;
    unsigned count = 0;
    std::size_t i = 0;
    bool padded = false;
    while (i < end && !padded) {
        // A block at a time: its groups, and those begun before it, give at most 3 bytes for
        // every 4 characters plus 3, and the wide steps write 2 bytes past their own.
        const std::size_t stop = std::min(end, i + block);
        auto* w = reinterpret_cast<unsigned char*>(o.room((stop - i) / 4 * 3 + 8));
        while (i < stop) {
            if (count == 0) {
                // Whole groups of alphabet characters, the common case.
                i = KNMimeCodec::decodeBase64Plain(p, i, stop, w);
                if (i == stop)
                    break;
            }
            const unsigned char v = table[p[i++]];
            if (v == base64Pad) {
                padded = true;
                break;
            }
            if (v == base64Skip)
                continue;
            w = KNMimeCodec::addBase64Sextet(w, acc, count, v);
        }
        o.advance(reinterpret_cast<char*>(w));
    }
    // A final incomplete group: two characters hold one byte, three hold two.
    auto* w = reinterpret_cast<unsigned char*>(o.room(2));
    o.advance(reinterpret_cast<char*>(KNMimeCodec::writeBase64Rest(w, acc, count)));
    o.finish();
    return out;
}

KNCString KNMimeBodyDecoder::decodeQuotedPrintable(std::string_view text)
{
    KNCString out;
    // Every line decodes to at most as many bytes as it has; the blocks ask for room for
    // their short copies on top.
    KNMimeCodec::KNMimeCodecOutput o(out, text.size() + 64 + 2 * KNMimeCodec::copySlack);
    readQuotedPrintable(text, o);
    o.finish();
    return out;
}

KNCString KNMimeBodyDecoder::decodeUUEncode(std::string_view text)
{
    KNCString out;
    out.reserve(text.size() / 4 * 3);
    // Data starts after the first line beginning "begin "; without one every line is data.
    std::size_t pos = 0;
    for (std::size_t scan = 0; scan < text.size();) {
        std::size_t lineEnd = text.find('\n', scan);
        if (lineEnd == std::string_view::npos)
            lineEnd = text.size();
        if (text.compare(scan, 6, "begin ") == 0) {
            pos = lineEnd + 1;
            break;
        }
        scan = lineEnd + 1;
    }
    while (pos < text.size()) {
        std::size_t lineEnd = text.find('\n', pos);
        if (lineEnd == std::string_view::npos)
            lineEnd = text.size();
        std::string_view line = text.substr(pos, lineEnd - pos);
        pos = lineEnd + 1;
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        if (line.empty())
            continue;
        if (line == "end")
            break;
        const unsigned length = (static_cast<unsigned char>(line[0]) - 32u) & 63u;
        if (length == 0)
            continue; // the empty line before "end"
        unsigned written = 0;
        for (std::size_t i = 1; i + 1 < line.size() && written < length; i += 4) {
            unsigned v[4] = {0, 0, 0, 0};
            for (std::size_t k = 0; k < 4 && i + k < line.size(); ++k)
                v[k] = (static_cast<unsigned char>(line[i + k]) - 32u) & 63u;
            const unsigned char bytes[3] = {static_cast<unsigned char>(v[0] << 2 | v[1] >> 4),
                                            static_cast<unsigned char>(v[1] << 4 | v[2] >> 2),
                                            static_cast<unsigned char>(v[2] << 6 | v[3])};
            for (unsigned k = 0; k < 3 && written < length; ++k, ++written)
                out += static_cast<char>(bytes[k]);
        }
    }
    return out;
}

std::size_t KNMimeBodyDecoder::decodedSize(std::string_view body, std::string_view encodingName)
{
    switch (encodingByName(encodingName)) {
    case Encoding::Identity:
    case Encoding::Unknown:
        return body.size();
    case Encoding::Base64: {
        // As decodeBase64 reads: the alphabet up to the first "=", three bytes a group of four,
        // one or two for a final group of two or three characters.
        const std::string_view data = body.substr(0, body.find('='));
        const auto* p = reinterpret_cast<const unsigned char*>(data.data());
        std::size_t characters = 0;
        std::size_t i = 0;
        for (; i + 8 <= data.size(); i += 8) {
            // Eight bytes at a time: a line of base64 is mostly words of the alphabet alone.
            std::uint64_t word;
            std::memcpy(&word, p + i, sizeof word);
            if (isBase64Word(word)) {
                characters += 8;
                continue;
            }
            for (std::size_t k = i; k < i + 8; ++k)
                characters += base64.values[p[k]] < 64;
        }
        for (; i < data.size(); ++i)
            characters += base64.values[p[i]] < 64;
        const std::size_t rest = characters % 4;
        return characters / 4 * 3 + (rest > 1 ? rest - 1 : 0);
    }
    case Encoding::QuotedPrintable: {
        if (body.find('=') == std::string_view::npos) {
            // No escape and no soft break: decoding only drops the blanks before line ends.
            std::size_t size = body.size();
            for (std::size_t pos = 0;;) {
                const std::size_t lineEnd = body.find('\n', pos);
                std::size_t end = lineEnd == std::string_view::npos ? body.size() : lineEnd;
                if (lineEnd != std::string_view::npos && end > pos && body[end - 1] == '\r')
                    --end;
                for (; end > pos && isBlank(body[end - 1]); --end)
                    --size;
                if (lineEnd == std::string_view::npos)
                    return size;
                pos = lineEnd + 1;
            }
        }
        ByteCount count;
        readQuotedPrintable(body, count);
        return count.size();
    }
    default:
        return decode(body, encodingName).data.size();
    }
}

KNMimeBodyDecoder::Body KNMimeBodyDecoder::decode(std::string_view body, std::string_view encodingName)
{
    Body result;
    result.encoding = encodingByName(encodingName);
    switch (result.encoding) {
    case Encoding::QuotedPrintable:
        result.data = decodeQuotedPrintable(body);
        break;
    case Encoding::Base64:
        result.data = decodeBase64(body);
        break;
    case Encoding::UUEncode:
        result.data = decodeUUEncode(body);
        break;
    case Encoding::Unknown:
        result.unknownEncoding = true;
        result.data.assign(body.data(), body.size());
        break;
    case Encoding::Identity:
        result.data.assign(body.data(), body.size());
        break;
    }
    return result;
}

KNMimeBodyDecoder::Body KNMimeBodyDecoder::decode(const KNMimePart& part)
{
    const KNCString body = part.getBody();
    if (part.isMultipart())
        return decode(body, "");
    const auto encoding = KNMimeMessageView::header(part, "Content-Transfer-Encoding");
    return decode(body, encoding ? std::string_view(*encoding) : std::string_view());
}

KNMimeBodyDecoder::Text KNMimeBodyDecoder::text(const KNMimePart& part, LineEnds lineEnds)
{
    Text result;
    const Body body = decode(part);
    result.unknownEncoding = body.unknownEncoding;
    KNCString charset;
    if (const auto type = KNMimeMessageView::header(part, "Content-Type"))
        charset = KNMimeExtendedParameters::fromHeaderValue(*type).get("charset").value_or("");
    result.charset = KNMimeCharset::canonicalName(charset);
    KNMimeCharset::Conversion converted = KNMimeCharset::toUtf8(body.data, result.charset);
    result.lossy = converted.lossy;
    result.unknownCharset = converted.unknownCharset;
    result.text = lineEnds == LineEnds::AsStored ? std::move(converted.text)
                                                 : convertLineEnds(converted.text, lineEnds);
    return result;
}

KNCString KNMimeBodyDecoder::convertLineEnds(std::string_view text, LineEnds lineEnds)
{
    if (lineEnds == LineEnds::AsStored)
        return KNCString(text);
    const char* const delim = lineEnds == LineEnds::LF ? "\n" : "\r\n";
    KNCString out;
    out.reserve(text.size() + text.size() / 32);
    std::size_t pos = 0;
    while (pos < text.size()) {
        const std::size_t brk = text.find_first_of("\r\n", pos);
        if (brk == std::string_view::npos) {
            out.append(text.data() + pos, text.size() - pos);
            break;
        }
        out.append(text.data() + pos, brk - pos);
        out.append(delim);
        pos = brk + ((text[brk] == '\r' && brk + 1 < text.size() && text[brk + 1] == '\n') ? 2 : 1);
    }
    return out;
}
