#include <mime/KNMimeUtils.h>

#include <mime/KNMimeError.h>
#include <mime/KNMimeMessages.h>
#include <mime/internal/KNMimeScan.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace {

using KNMimeScan::isBlank;
using KNMimeScan::isWhitespace;

constexpr std::size_t base64LineBytes = 54; // input bytes per 72-character line
constexpr std::size_t qpLineLimit = 74;     // characters per line before the soft break
constexpr std::size_t encodedWordLimit = 75;

constexpr char decToHex(unsigned c) noexcept
{
    return "0123456789ABCDEF"[c & 0x0F];
}

constexpr char base64Alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Byte to 6-bit value; line breaks are skipped, everything else is refused.
constexpr unsigned char base64Skip = 0x80;
constexpr unsigned char base64Invalid = 0xFF;

struct Base64DecodeTable {
    unsigned char values[256] = {};

    constexpr Base64DecodeTable()
    {
        for (auto& v : values)
            v = base64Invalid;
        for (unsigned i = 0; i < 64; ++i)
            values[static_cast<unsigned char>(base64Alphabet[i])] = static_cast<unsigned char>(i);
        values[static_cast<unsigned char>('\r')] = base64Skip;
        values[static_cast<unsigned char>('\n')] = base64Skip;
    }
};

constexpr Base64DecodeTable base64Decode;

// A table of flags over bytes, built from a list of bytes.
struct ByteSet {
    bool flags[256] = {};

    constexpr explicit ByteSet(const char* bytes)
    {
        for (; *bytes != '\0'; ++bytes)
            flags[static_cast<unsigned char>(*bytes)] = true;
    }
    constexpr bool operator[](unsigned char c) const { return flags[c]; }
};

// Bytes quoted-printable writes as they are: printable ASCII except the restricted
// characters (= ! " # $ @ [ \ ] ^ ` { | } ~), plus blank and tab.
constexpr ByteSet qpLiteral(
    " \t%&'()*+,-./0123456789:;<>?ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz");

// The quoted-printable form of every byte outside a CR LF pair: the byte itself, or '='
// and two upper-case hexadecimal digits.
struct QpCode {
    char text[3];
    unsigned char length;
};

struct QpCodeTable {
    QpCode codes[256] = {};

    constexpr QpCodeTable()
    {
        for (unsigned b = 0; b < 256; ++b) {
            if (qpLiteral[static_cast<unsigned char>(b)])
                codes[b] = QpCode{{static_cast<char>(b), 0, 0}, 1};
            else
                codes[b] = QpCode{{'=', decToHex(b >> 4), decToHex(b)}, 3};
        }
    }
};

constexpr QpCodeTable qpCodes;

// Bytes the Q encoding of encoded words writes as they are.
constexpr ByteSet qAllowed("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789!*+-/");

std::atomic<std::int64_t> lastBoundary{0};

// The encodings that leave the data as it is; no check that 7bit data is seven-bit.
bool isIdentityEncoding(const KNCString& encoding) noexcept
{
    return knEqualsIgnoreCase(encoding, KNMimeUtils::SevenBit) || knEqualsIgnoreCase(encoding, KNMimeUtils::EightBit)
        || knEqualsIgnoreCase(encoding, KNMimeUtils::Binary);
}

[[noreturn]] void throwUnknownEncoding(const KNCString& encoding)
{
    KNThrow(KNMimeError(KNMessage(knmime_UNKNOWN_ENCODING(), encoding)));
}

[[noreturn]] void throwInvalidCharset(const KNCString& charset)
{
    KNThrow(KNMimeError(KNMessage(knmime_INVALID_CHARSET(), charset)));
}

[[noreturn]] void throwInvalidBase64(char c)
{
    KNThrow(KNMimeParseError(
        KNMessage(knmime_INVALID_BASE64_CHAR(), static_cast<int>(static_cast<unsigned char>(c)))));
}

// Collects output in a small buffer and appends it to the result in blocks, which keeps
// the per-byte cost of the encoders free of capacity checks and terminator writes.
class BlockWriter {
public:
    explicit BlockWriter(KNCString& out) : out_(out) {}

    void put(char c)
    {
        if (used_ == sizeof(buf_))
            flush();
        buf_[used_++] = c;
    }
    void put3(char a, char b, char c)
    {
        if (used_ + 3 > sizeof(buf_))
            flush();
        buf_[used_] = a;
        buf_[used_ + 1] = b;
        buf_[used_ + 2] = c;
        used_ += 3;
    }
    // Writes all three bytes of the code's text and keeps `length` of them.
    void putCode(const QpCode& code)
    {
        if (used_ + 3 > sizeof(buf_))
            flush();
        std::memcpy(buf_ + used_, code.text, 3);
        used_ += code.length;
    }
    bool empty() const { return used_ == 0 && out_.empty(); }
    char last() const { return used_ != 0 ? buf_[used_ - 1] : out_.back(); }
    void flush()
    {
        out_.append(buf_, used_);
        used_ = 0;
    }

private:
    KNCString& out_;
    char buf_[4096];
    std::size_t used_ = 0;
};

// --- base64 --------------------------------------------------------------------------

std::size_t base64EncodedSize(std::size_t n) noexcept
{
    return (n + 2) / 3 * 4 + n / base64LineBytes * 2;
}

char* writeBase64Group(char* w, const unsigned char* p) noexcept
{
    const std::uint32_t v = std::uint32_t{p[0]} << 16 | std::uint32_t{p[1]} << 8 | p[2];
    w[0] = base64Alphabet[v >> 18];
    w[1] = base64Alphabet[(v >> 12) & 0x3F];
    w[2] = base64Alphabet[(v >> 6) & 0x3F];
    w[3] = base64Alphabet[v & 0x3F];
    return w + 4;
}

// Writes base64EncodedSize(data.size()) characters: every full line of 72 characters is
// followed by CR LF, including the last one when the data fills it exactly.
char* writeBase64(char* w, std::string_view data) noexcept
{
    const auto* p = reinterpret_cast<const unsigned char*>(data.data());
    std::size_t n = data.size();
    for (; n >= base64LineBytes; n -= base64LineBytes) {
        for (std::size_t g = 0; g < base64LineBytes; g += 3, p += 3)
            w = writeBase64Group(w, p);
        *w++ = '\r';
        *w++ = '\n';
    }
    for (; n >= 3; n -= 3, p += 3)
        w = writeBase64Group(w, p);
    if (n == 1) {
        *w++ = base64Alphabet[p[0] >> 2];
        *w++ = base64Alphabet[(p[0] & 0x03) << 4];
        *w++ = '=';
        *w++ = '=';
    } else if (n == 2) {
        *w++ = base64Alphabet[p[0] >> 2];
        *w++ = base64Alphabet[(p[0] & 0x03) << 4 | p[1] >> 4];
        *w++ = base64Alphabet[(p[1] & 0x0F) << 2];
        *w++ = '=';
    }
    return w;
}

void appendBase64(KNCString& out, std::string_view data)
{
    const std::size_t at = out.size();
    out.resize(at + base64EncodedSize(data.size()));
    writeBase64(out.data() + at, data);
}

// --- quoted-printable ----------------------------------------------------------------

void softBreak(BlockWriter& w)
{
    w.put3('=', '\r', '\n');
}

void encodeQuotedPrintableInto(BlockWriter& w, std::string_view data)
{
    const auto* p = reinterpret_cast<const unsigned char*>(data.data());
    const std::size_t n = data.size();
    std::size_t column = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const unsigned char b = p[i];
        if (b == '\r' && i + 1 < n && p[i + 1] == '\n') {
            // White space before a line end would be lost in transport: protect it.
            if (!w.empty() && isBlank(w.last()))
                softBreak(w);
            w.put('\r');
            w.put('\n');
            column = 0;
            ++i;
            continue;
        }
        // One table entry per byte, literal or escaped, with no branch between the two.
        const QpCode& code = qpCodes.codes[b];
        column += code.length;
        if (column > qpLineLimit) {
            softBreak(w);
            column = code.length;
        }
        w.putCode(code);
    }
    if (!w.empty() && isBlank(w.last()))
        softBreak(w);
}

// Drops the blanks and tabs at the end of the output written so far in [begin, w).
char* trimBlanks(char* begin, char* w) noexcept
{
    while (w != begin && isBlank(w[-1]))
        --w;
    return w;
}

KNCString decodeQuotedPrintableView(std::string_view text, bool stripTrailingWhitespace)
{
    const std::size_t n = text.size();
    const char* const p = text.data();
    KNCString out;
    out.resize(n);
    char* const begin = out.data();
    char* w = begin;
    bool atLineStart = true;
    std::size_t i = 0;
    while (i < n) {
        const char c = p[i];
        if (c == '=') {
            if (n - i < 3) { // a cut escape at the very end stays as it is
                *w++ = c;
                if (i + 1 < n)
                    *w++ = p[i + 1];
                atLineStart = false;
                break;
            }
            if (p[i + 1] == '\r' && p[i + 2] == '\n') {
                atLineStart = true; // soft break
                i += 3;
                continue;
            }
            const int high = knHexDigitValue(p[i + 1]);
            const int low = knHexDigitValue(p[i + 2]);
            atLineStart = false;
            if (high >= 0 && low >= 0) {
                *w++ = static_cast<char>(high << 4 | low);
                i += 3;
            } else {
                *w++ = c;
                *w++ = p[i + 1];
                i += 2;
            }
        } else if (c == '\r' && i + 1 < n && p[i + 1] == '\n') {
            if (stripTrailingWhitespace && !atLineStart)
                w = trimBlanks(begin, w);
            *w++ = '\r';
            *w++ = '\n';
            atLineStart = true;
            i += 2;
        } else {
            *w++ = c;
            atLineStart = false;
            ++i;
        }
    }
    if (stripTrailingWhitespace && !atLineStart)
        w = trimBlanks(begin, w);
    out.resize(static_cast<std::size_t>(w - begin));
    return out;
}

// --- encoded words -------------------------------------------------------------------

// Appends the B body of the longest prefix of `text` that fits `room`; returns its length.
std::size_t appendWordB(KNCString& out, std::string_view text, std::size_t room)
{
    const std::size_t take = std::min(room / 4 * 3, text.size());
    appendBase64(out, text.substr(0, take));
    return take;
}

// Appends the Q body of the longest prefix of `text` that fits `room`; returns its length.
std::size_t appendWordQ(KNCString& out, std::string_view text, std::size_t room)
{
    std::size_t used = 0;
    std::size_t i = 0;
    for (; i < text.size(); ++i) {
        const auto b = static_cast<unsigned char>(text[i]);
        const bool plain = b == ' ' || qAllowed[b];
        const std::size_t cost = plain ? 1 : 3;
        if (used + cost > room)
            break;
        used += cost;
        if (b == ' ')
            out += '_';
        else if (plain)
            out += static_cast<char>(b);
        else
            out.append({'=', decToHex(b >> 4), decToHex(b)});
    }
    return i;
}

struct EncodedWord {
    std::string_view charset;
    std::string_view encoding;
    std::string_view text;
};

// Matches "=?charset?encoding?text?=" at `at`, each part a non-empty run without '?'.
// The runs are maximal by construction, so there is no alternative to try on failure.
bool matchEncodedWord(std::string_view text, std::size_t at, EncodedWord& word) noexcept
{
    std::string_view parts[3];
    std::size_t p = at + 2;
    for (std::string_view& part : parts) {
        const std::size_t q = text.find('?', p);
        if (q == std::string_view::npos || q == p)
            return false;
        part = text.substr(p, q - p);
        p = q + 1;
    }
    if (p >= text.size() || text[p] != '=')
        return false;
    word = EncodedWord{parts[0], parts[1], parts[2]};
    return true;
}

// The leftmost encoded word. A failed candidate reads at most three '?'-separated runs,
// and each run ends at most one candidate, so every byte is read a bounded number of times.
bool findEncodedWord(std::string_view text, EncodedWord& word) noexcept
{
    for (std::size_t at = text.find("=?"); at != std::string_view::npos; at = text.find("=?", at + 1))
        if (matchEncodedWord(text, at, word))
            return true;
    return false;
}

// --- header tokenizing ---------------------------------------------------------------

std::size_t findWordStart(std::string_view text, std::size_t from, bool commentAware) noexcept
{
    for (std::size_t at = text.find("=?", from); at != std::string_view::npos; at = text.find("=?", at + 1)) {
        if (at == 0)
            return at;
        const char before = text[at - 1];
        if (isWhitespace(before) || (commentAware && before == '('))
            return at;
    }
    return std::string_view::npos;
}

// Position just behind the "?=" that closes the word starting at `start`, or npos.
std::size_t findWordEnd(std::string_view text, std::size_t start, bool commentAware) noexcept
{
    for (std::size_t at = text.find("?=", start); at != std::string_view::npos; at = text.find("?=", at + 1)) {
        const std::size_t end = at + 2;
        if (end == text.size() || isWhitespace(text[end]) || (commentAware && text[end] == ')'))
            return end;
    }
    return std::string_view::npos;
}

bool isAllWhitespace(std::string_view text) noexcept
{
    return std::all_of(text.begin(), text.end(), isWhitespace);
}

} // namespace

// --- lexical helpers -------------------------------------------------------------------

std::size_t KNMimeUtils::findDelimiter(const KNCString& text, char delim)
{
    return KNMimeScan::findDelimiter(text, delim);
}

bool KNMimeUtils::isToken(const KNCString& text)
{
    return KNMimeScan::isToken(text);
}

KNCString KNMimeUtils::cleanToken(const KNCString& text, bool unquote)
{
    return KNMimeScan::cleanToken(text, unquote);
}

KNCString KNMimeUtils::quoteAndEscape(const KNCString& text)
{
    const auto needsEscape = [](char c) { return c == '"' || c == '\\'; };
    const auto escapes = static_cast<std::size_t>(std::count_if(text.begin(), text.end(), needsEscape));
    KNCString out;
    out.reserve(text.size() + escapes + 2);
    out += '"';
    for (const char c : text) {
        if (needsEscape(c))
            out += '\\';
        out += c;
    }
    out += '"';
    return out;
}

KNCString KNMimeUtils::unfoldAndTrim(const KNCString& text)
{
    return KNMimeScan::unfoldAndTrim(text);
}

KNCString KNMimeUtils::fold(const KNCString& text)
{
    KNCString out;
    KNMimeScan::appendFolded(out, text);
    return out;
}

KNCString KNMimeUtils::replaceLineDelimiter(const KNCString& text, const KNCString& delim)
{
    const char* const p = text.data();
    const std::size_t n = text.size();
    // Size the result exactly: a cheap counting loop the compiler vectorises.
    std::size_t breakBytes = 0;
    std::size_t pairs = 0;
    for (std::size_t i = 0; i < n; ++i)
        breakBytes += (p[i] == '\r') | (p[i] == '\n');
    for (std::size_t i = 1; i < n; ++i)
        pairs += (p[i - 1] == '\r') & (p[i] == '\n');
    const std::size_t d = delim.size();
    KNCString out;
    out.resize(n - breakBytes + (breakBytes - pairs) * d);
    char* w = out.data();
    for (std::size_t i = 0; i < n; ++i) {
        const char c = p[i];
        if (c != '\r' && c != '\n') {
            *w++ = c;
            continue;
        }
        if (c == '\r' && i + 1 < n && p[i + 1] == '\n')
            ++i;
        if (d == 2) {
            w[0] = delim[0];
            w[1] = delim[1];
            w += 2;
        } else if (d == 1) {
            *w++ = delim[0];
        } else {
            w = std::copy(delim.begin(), delim.end(), w);
        }
    }
    return out;
}

KNCStringList KNMimeUtils::tokenizeHeader(const KNCString& text, bool commentAware)
{
    const std::string_view t(text);
    KNCStringList list;
    std::size_t s = 0;
    for (;;) {
        const std::size_t start = findWordStart(t, s, commentAware);
        if (start == std::string_view::npos)
            break;
        const std::size_t end = findWordEnd(t, start, commentAware);
        if (end == std::string_view::npos)
            break;
        // White space between words (or after one) is dropped; leading white space is kept.
        const std::string_view before = t.substr(s, start - s);
        if (!before.empty() && (s == 0 || !isAllWhitespace(before)))
            list.emplace_back(before);
        list.emplace_back(t.substr(start, end - start));
        s = end;
    }
    // A rest of a single byte is dropped on purpose.
    if (s + 1 < t.size())
        list.emplace_back(t.substr(s));
    return list;
}

KNCString KNMimeUtils::getUniqueBoundary()
{
    using namespace std::chrono;
    const std::int64_t now = duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
    // Strictly increasing within the process, even for calls within one clock tick.
    std::int64_t previous = lastBoundary.load(std::memory_order_relaxed);
    std::int64_t next = 0;
    do {
        next = std::max(now, previous + 1);
    } while (!lastBoundary.compare_exchange_weak(previous, next, std::memory_order_relaxed));
    char buf[64];
    const int length = std::snprintf(buf, sizeof(buf), "_=_next_part_%" PRId64 "_=_", next);
    return KNCString(buf, static_cast<std::size_t>(length));
}

// --- body transfer encodings -------------------------------------------------------------

KNCString KNMimeUtils::encodeBase64(const KNCString& data)
{
    KNCString out;
    appendBase64(out, data);
    return out;
}

KNCString KNMimeUtils::decodeBase64(const KNCString& text)
{
    // Only trailing padding is removed: an '=' anywhere else is refused below.
    std::size_t end = text.size();
    while (end > 0 && text[end - 1] == '=')
        --end;
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const auto* const table = base64Decode.values;
    KNCString out;
    out.resize(end / 4 * 3 + 3);
    auto* const begin = reinterpret_cast<unsigned char*>(out.data());
    unsigned char* w = begin;
    std::uint32_t acc = 0;
    unsigned count = 0;
    std::size_t i = 0;
    while (i < end) {
        if (count == 0) {
            // Whole groups of four plain characters, the common case.
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
        const unsigned char v = table[p[i]];
        if (v == base64Invalid)
            throwInvalidBase64(text[i]);
        ++i;
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
    // Left-over values: two give one byte, three give two, one gives nothing.
    if (count == 2) {
        *w++ = static_cast<unsigned char>(acc >> 4);
    } else if (count == 3) {
        *w++ = static_cast<unsigned char>(acc >> 10);
        *w++ = static_cast<unsigned char>(acc >> 2);
    }
    out.resize(static_cast<std::size_t>(w - begin));
    return out;
}

KNCString KNMimeUtils::encodeQuotedPrintable(const KNCString& data)
{
    const std::size_t n = data.size();
    KNCString out;
    // Three characters per byte at most, plus a soft break per 72 characters and one at the end.
    out.reserve(3 * n + n / 8 + 16);
    BlockWriter w(out);
    encodeQuotedPrintableInto(w, data);
    w.flush();
    return out;
}

KNCString KNMimeUtils::decodeQuotedPrintable(const KNCString& text, bool stripTrailingWhitespace)
{
    return decodeQuotedPrintableView(text, stripTrailingWhitespace);
}

KNCString KNMimeUtils::encode(const KNCString& data, const KNCString& encoding)
{
    if (knEqualsIgnoreCase(encoding, QuotedPrintable))
        return encodeQuotedPrintable(data);
    if (knEqualsIgnoreCase(encoding, Base64))
        return encodeBase64(data);
    if (isIdentityEncoding(encoding))
        return data;
    throwUnknownEncoding(encoding);
}

KNCString KNMimeUtils::decode(const KNCString& text, const KNCString& encoding)
{
    if (knEqualsIgnoreCase(encoding, QuotedPrintable))
        return decodeQuotedPrintable(text, true);
    if (knEqualsIgnoreCase(encoding, Base64))
        return decodeBase64(text);
    if (isIdentityEncoding(encoding))
        return text;
    throwUnknownEncoding(encoding);
}

// --- encoded words in header values ------------------------------------------------------

KNCString KNMimeUtils::headerEncode(const KNCString& text, const KNCString& charset, const KNCString& encoding)
{
    const bool useB = knEqualsIgnoreCase(encoding, "B");
    if (!useB && !knEqualsIgnoreCase(encoding, "Q"))
        throwUnknownEncoding(encoding);
    if (!isToken(charset))
        throwInvalidCharset(charset);
    const KNCString prefix = "=?" + charset + "?" + encoding + "?";
    const std::int64_t room = static_cast<std::int64_t>(encodedWordLimit)
        - static_cast<std::int64_t>(prefix.size()) - 2;
    // Below four characters a B word carries no byte and a Q word maybe none: no progress.
    if (room < 4)
        throwInvalidCharset(charset);
    if (text.empty())
        return KNCString();

    const auto roomSize = static_cast<std::size_t>(room);
    const std::size_t leastPerWord = useB ? roomSize / 4 * 3 : roomSize / 3;
    const std::size_t words = (text.size() + leastPerWord - 1) / leastPerWord;
    KNCString out;
    out.reserve(words * (prefix.size() + roomSize + 3));
    std::string_view rest(text);
    while (!rest.empty()) {
        if (!out.empty())
            out += ' ';
        out += prefix;
        rest.remove_prefix(useB ? appendWordB(out, rest, roomSize) : appendWordQ(out, rest, roomSize));
        out.append("?=", 2);
    }
    return out;
}

KNCString KNMimeUtils::headerEncodeB(const KNCString& text, std::size_t maxLength, std::size_t& consumed)
{
    KNCString body;
    consumed = appendWordB(body, text, maxLength);
    return body;
}

KNCString KNMimeUtils::headerEncodeQ(const KNCString& text, std::size_t maxLength, std::size_t& consumed)
{
    KNCString body;
    body.reserve(std::min(maxLength, 3 * text.size()));
    consumed = appendWordQ(body, text, maxLength);
    return body;
}

KNCString KNMimeUtils::headerDecode(const KNCString& text, KNCString& charset)
{
    EncodedWord word;
    if (!findEncodedWord(text, word)) {
        charset = "US-ASCII";
        return text;
    }
    KNCString decoded;
    if (knEqualsIgnoreCase(word.encoding, "B"))
        decoded = decodeBase64(KNCString(word.text));
    else if (knEqualsIgnoreCase(word.encoding, "Q"))
        decoded = headerDecodeQ(KNCString(word.text));
    else
        throwUnknownEncoding(KNCString(word.encoding));
    charset = KNCString(word.charset);
    return decoded;
}

KNCString KNMimeUtils::headerDecodeQ(const KNCString& text)
{
    KNCString copy(text);
    std::replace(copy.begin(), copy.end(), '_', ' ');
    return decodeQuotedPrintableView(copy, false);
}
