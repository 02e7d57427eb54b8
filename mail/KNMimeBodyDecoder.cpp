#include <mail/KNMimeBodyDecoder.h>

#include <mail/KNMimeCharset.h>
#include <mail/KNMimeExtendedParameters.h>
#include <mail/KNMimeMessageView.h>
#include <mail/internal/KNMimeMailScan.h>
#include <mime/KNMimePart.h>

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

// Counts the bytes a decoder would write, for a decoded size without the decoded copy.
struct ByteCount {
    std::size_t size = 0;
    void append(const char*, std::size_t n) { size += n; }
    ByteCount& operator+=(char)
    {
        ++size;
        return *this;
    }
};

// Decodes quoted-printable `text` into `out`, which takes runs of bytes (append) and single
// bytes (+=): a string for the decoded bytes, or a count of them.
template <class Out>
void readQuotedPrintable(std::string_view text, Out& out)
{
    // The next '=' (or the end): searched in the rest of the text, not line by line, so that
    // a text with few escapes costs one search for each line end and few more.
    auto findEq = [text](std::size_t from) {
        const void* found = std::memchr(text.data() + from, '=', text.size() - from);
        return found == nullptr ? text.size() : static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
    };
    std::size_t pos = 0;
    std::size_t nextEq = findEq(0);
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
        for (std::size_t i = pos; i < contentEnd;) {
            if (nextEq < i)
                nextEq = findEq(i);
            const std::size_t eq = std::min(nextEq, contentEnd);
            out.append(text.data() + i, eq - i);
            if (eq == contentEnd)
                break;
            const int hi = contentEnd - eq >= 3 ? knHexDigitValue(text[eq + 1]) : -1;
            const int lo = contentEnd - eq >= 3 ? knHexDigitValue(text[eq + 2]) : -1;
            if (hi >= 0 && lo >= 0) {
                out += static_cast<char>(hi << 4 | lo);
                i = eq + 3;
            } else {
                out += '='; // an invalid escape stays as it stands
                i = eq + 1;
            }
        }
        if (hasBreak && !softBreak)
            out.append(crlf ? "\r\n" : "\n", crlf ? 2 : 1);
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
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const std::size_t end = text.size();
    const auto* const table = base64.values;
    KNCString out;
    out.resize(end / 4 * 3 + 3);
    auto* const begin = reinterpret_cast<unsigned char*>(out.data());
    unsigned char* w = begin;
    std::uint32_t acc = 0;
    unsigned count = 0;
    std::size_t i = 0;
    while (i < end) {
        if (count == 0) {
            // Whole groups of four alphabet characters, the common case.
            for (; end - i >= 4; i += 4) {
                const unsigned a = table[p[i]], b = table[p[i + 1]], c = table[p[i + 2]], d = table[p[i + 3]];
                if ((a | b | c | d) & 0xC0)
                    break;
                const std::uint32_t v = a << 18 | b << 12 | c << 6 | d;
                w[0] = static_cast<unsigned char>(v >> 16);
                w[1] = static_cast<unsigned char>(v >> 8);
                w[2] = static_cast<unsigned char>(v);
                w += 3;
            }
            if (i == end)
                break;
        }
        const unsigned char v = table[p[i++]];
        if (v == base64Pad)
            break;
        if (v == base64Skip)
            continue;
        acc = acc << 6 | v;
        if (++count == 4) {
            w[0] = static_cast<unsigned char>(acc >> 16);
            w[1] = static_cast<unsigned char>(acc >> 8);
            w[2] = static_cast<unsigned char>(acc);
            w += 3;
            acc = 0;
            count = 0;
        }
    }
    // A final incomplete group: two characters hold one byte, three hold two.
    if (count == 2) {
        *w++ = static_cast<unsigned char>(acc >> 4);
    } else if (count == 3) {
        *w++ = static_cast<unsigned char>(acc >> 10);
        *w++ = static_cast<unsigned char>(acc >> 2);
    }
    out.resize(static_cast<std::size_t>(w - begin));
    return out;
}

KNCString KNMimeBodyDecoder::decodeQuotedPrintable(std::string_view text)
{
    KNCString out;
    out.reserve(text.size());
    readQuotedPrintable(text, out);
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
        return count.size;
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
