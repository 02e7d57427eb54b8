#include <mime/KNMimeUtils.h>

#include <mime/KNMimeError.h>
#include <mime/KNMimeMessages.h>
#include <mime/internal/KNMimeCodec.h>
#include <mime/internal/KNMimeScan.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

using KNMimeScan::isBlank;
using KNMimeScan::isWhitespace;

using KNMimeCodec::base64Alphabet;
using KNMimeCodec::base64LineBytes;
using KNMimeCodec::qpLineLimit;

constexpr std::size_t encodedWordLimit = 75;

constexpr char decToHex(unsigned c) noexcept
{
    return KNMimeCodec::hexDigit(c);
}

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

// The bytes among the 64 at `p` that quoted-printable does not write as they are (CR
// included): bit k is set when p[k] is one.
std::uint64_t qpSpecialPositions(const unsigned char* p) noexcept
{
    std::uint64_t mask = 0;
#if defined(__SSE2__)
    // Signed comparisons: bytes from 0x80 up are negative, below every ASCII character.
    const auto is = [](__m128i x, char c) { return _mm_cmpeq_epi8(x, _mm_set1_epi8(c)); };
    const auto below = [](__m128i x, char c) { return _mm_cmplt_epi8(x, _mm_set1_epi8(c)); };
    const auto above = [](__m128i x, char c) { return _mm_cmpgt_epi8(x, _mm_set1_epi8(c)); };
    for (int k = 0; k < 4; ++k) {
        const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16 * k));
        // Controls but tab, bytes from 0x80, and { | } ~ DEL.
        const __m128i outside = _mm_or_si128(_mm_andnot_si128(is(x, '\t'), below(x, ' ')), above(x, 'z'));
        // ! " # $, [ \ ] ^, and = @ `.
        const __m128i ranges = _mm_or_si128(_mm_and_si128(above(x, ' '), below(x, '%')),
                                            _mm_and_si128(above(x, 'Z'), below(x, '_')));
        const __m128i singles = _mm_or_si128(_mm_or_si128(is(x, '='), is(x, '@')), is(x, '`'));
        const __m128i special = _mm_or_si128(outside, _mm_or_si128(ranges, singles));
        mask |= std::uint64_t{static_cast<std::uint32_t>(_mm_movemask_epi8(special))} << (16 * k);
    }
#else
    for (int k = 0; k < 64; ++k)
        mask |= std::uint64_t{!qpLiteral[p[k]]} << k;
#endif
    return mask;
}

// The escape of every byte: '=' and two upper-case hexadecimal digits.
struct QpEscapeTable {
    char text[256][3] = {};

    constexpr QpEscapeTable()
    {
        for (unsigned b = 0; b < 256; ++b) {
            text[b][0] = '=';
            text[b][1] = decToHex(b >> 4);
            text[b][2] = decToHex(b);
        }
    }
};

constexpr QpEscapeTable qpEscapes;

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

// --- base64 --------------------------------------------------------------------------

using KNMimeCodec::KNMimeCodecOutput;

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

// Writes the soft line break '=' CR LF.
char* softBreak(char* w) noexcept
{
    w[0] = '=';
    w[1] = '\r';
    w[2] = '\n';
    return w + 3;
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
    using KNMimeCodec::copyShort;
    using KNMimeCodec::positionsOf;
    const std::size_t n = text.size();
    const auto* const p = reinterpret_cast<const unsigned char*>(text.data());
    const auto* const hex = KNMimeCodec::hexValues.values;
    KNCString out;
    // Every piece of the text decodes to at most as many bytes as it has; the blocks below
    // ask for room for their short copies on top.
    KNMimeCodecOutput o(out, n + 64 + 2 * KNMimeCodec::copySlack);
    bool atLineStart = true;
    std::size_t i = 0;
    // 64 bytes at a time while 64 + copySlack are left, so that the short copies and the
    // escapes begun in the block read inside the text: runs between the bytes that need a
    // look ('=', and CR when line ends matter) are copied whole.
    while (n - i >= 64 + KNMimeCodec::copySlack) {
        const unsigned char* const b = p + i;
        char* w = o.room(64 + 2 * KNMimeCodec::copySlack);
        std::uint64_t marks = positionsOf(b, '=') | (stripTrailingWhitespace ? positionsOf(b, '\r') : 0);
        std::size_t at = 0;
        // Branches rather than selects below: the usual case is predicted, and the next
        // escape does not wait for the digits of this one to be read.
        for (; marks != 0; marks &= marks - 1) {
            const std::size_t k = KNMimeCodec::lowestBit(marks);
            if (k < at)
                continue; // read as part of the escape before
            w = copyShort(w, b + at, k - at); // no branch on an empty run
            atLineStart = atLineStart && k == at;
            if (b[k] == '=') {
                const unsigned high = hex[b[k + 1]];
                const unsigned low = hex[b[k + 2]];
                if ((high | low) < 16) {
                    *w++ = static_cast<char>(high << 4 | low);
                    at = k + 3;
                    atLineStart = false;
                } else if (b[k + 1] == '\r' && b[k + 2] == '\n') {
                    at = k + 3; // soft break
                    atLineStart = true;
                } else {
                    // A bad escape stays as it stands, with the character after the '='.
                    w[0] = '=';
                    w[1] = static_cast<char>(b[k + 1]);
                    w += 2;
                    at = k + 2;
                    atLineStart = false;
                }
            } else if (b[k + 1] == '\n') {
                if (!atLineStart)
                    w = trimBlanks(o.begin(), w);
                w[0] = '\r';
                w[1] = '\n';
                w += 2;
                at = k + 2;
                atLineStart = true;
            } else {
                *w++ = '\r'; // a CR on its own
                at = k + 1;
                atLineStart = false;
            }
        }
        if (at < 64) {
            w = copyShort(w, b + at, 64 - at);
            at = 64;
            atLineStart = false;
        }
        i += at;
        o.advance(w);
    }
    // The rest a character at a time.
    char* w = o.room(n - i + 16);
    while (i < n) {
        const char c = static_cast<char>(p[i]);
        if (c == '=') {
            if (n - i < 3) { // a cut escape at the very end stays as it is
                *w++ = c;
                if (i + 1 < n)
                    *w++ = static_cast<char>(p[i + 1]);
                atLineStart = false;
                break;
            }
            if (p[i + 1] == '\r' && p[i + 2] == '\n') {
                atLineStart = true; // soft break
                i += 3;
                continue;
            }
            const unsigned high = hex[p[i + 1]];
            const unsigned low = hex[p[i + 2]];
            atLineStart = false;
            if ((high | low) < 16) {
                *w++ = static_cast<char>(high << 4 | low);
                i += 3;
            } else {
                *w++ = c;
                *w++ = static_cast<char>(p[i + 1]);
                i += 2;
            }
        } else if (c == '\r' && i + 1 < n && p[i + 1] == '\n') {
            if (stripTrailingWhitespace && !atLineStart)
                w = trimBlanks(o.begin(), w);
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
        w = trimBlanks(o.begin(), w);
    o.advance(w);
    o.finish();
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
    constexpr std::size_t blockLines = 64;
    const std::size_t n = data.size();
    KNCString out;
    KNMimeCodecOutput o(out, base64EncodedSize(n));
    // Whole lines eight characters at a time, as long as two bytes follow the line for the
    // wide reads of its last step; the rest a group at a time.
    std::size_t done = 0;
    for (std::size_t wideLines = n >= 2 ? (n - 2) / base64LineBytes : 0; wideLines != 0;) {
        const std::size_t lines = std::min(wideLines, blockLines);
        const auto* p = reinterpret_cast<const unsigned char*>(data.data() + done);
        o.advance(KNMimeCodec::encodeBase64Lines(o.room(base64EncodedSize(lines * base64LineBytes)), p, lines));
        done += lines * base64LineBytes;
        wideLines -= lines;
    }
    const std::string_view rest = std::string_view(data).substr(done);
    o.advance(writeBase64(o.room(base64EncodedSize(rest.size())), rest));
    o.finish();
    return out;
}

KNCString KNMimeUtils::decodeBase64(const KNCString& text)
{
    constexpr std::size_t block = 16384;
    // Only trailing padding is removed: an '=' anywhere else is refused below.
    std::size_t end = text.size();
    while (end > 0 && text[end - 1] == '=')
        --end;
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const auto* const table = base64Decode.values;
    KNCString out;
    KNMimeCodecOutput o(out, end / 4 * 3 + 16);
    std::uint32_t acc = 0;
    unsigned count = 0;
    std::size_t i = 0;
    while (i < end) {
        // A block at a time: its groups, and those begun before it, give at most 3 bytes for
        // every 4 characters plus 3, and the wide steps write 2 bytes past their own.
        const std::size_t stop = std::min(end, i + block);
        auto* w = reinterpret_cast<unsigned char*>(o.room((stop - i) / 4 * 3 + 8));
        while (i < stop) {
            if (count == 0) {
                i = KNMimeCodec::decodeBase64Plain(p, i, stop, w);
                if (i == stop)
                    break;
            }
            const unsigned char v = table[p[i]];
            if (v == base64Invalid)
                KNMimeCodec::throwInvalidBase64(text[i]);
            ++i;
            if (v == base64Skip)
                continue;
            w = KNMimeCodec::addBase64Sextet(w, acc, count, v);
        }
        o.advance(reinterpret_cast<char*>(w));
    }
    auto* w = reinterpret_cast<unsigned char*>(o.room(2));
    o.advance(reinterpret_cast<char*>(KNMimeCodec::writeBase64Rest(w, acc, count)));
    o.finish();
    return out;
}

KNCString KNMimeUtils::encodeQuotedPrintable(const KNCString& data)
{
    const auto* const p = reinterpret_cast<const unsigned char*>(data.data());
    const std::size_t n = data.size();
    KNCString out;
    // Three characters per byte at most, plus a soft break per 72 characters and one at the end.
    KNMimeCodecOutput o(out, 3 * n + n / 8 + 32);
    std::size_t room = qpLineLimit; // characters the line still takes before a soft break
    bool lastBlank = false;         // whether the last character written is a blank or tab
    // Writes the escape of `b`, after a soft break when the line has no room for it.
    const auto escape = [&room, &lastBlank](char* w, unsigned char b) {
        if (room < 3) {
            w = softBreak(w);
            room = qpLineLimit;
        }
        std::memcpy(w, qpEscapes.text[b], 3);
        room -= 3;
        lastBlank = false;
        return w + 3;
    };
    // Writes CR LF, after a soft break when a blank or tab would end the line.
    const auto lineEnd = [&room, &lastBlank](char* w) {
        if (lastBlank) // white space before a line end would be lost in transport: protect it
            w = softBreak(w);
        w[0] = '\r';
        w[1] = '\n';
        room = qpLineLimit;
        lastBlank = false;
        return w + 2;
    };
    std::size_t i = 0;
    // 64 bytes at a time while 64 + copySlack are left, so that the short copies read inside
    // the data: the runs of literal bytes between the others are copied whole, cut by soft
    // breaks where the line is full.
    while (n - i >= 64 + KNMimeCodec::copySlack) {
        const unsigned char* const b = p + i;
        // 64 escapes and a soft break every 24 of them at most, and the short copies' slack.
        char* w = o.room(3 * 64 + 3 * 4 + KNMimeCodec::copySlack);
        std::uint64_t special = qpSpecialPositions(b);
        std::size_t at = 0;
        for (;;) {
            while (special != 0 && KNMimeCodec::lowestBit(special) < at)
                special &= special - 1; // the LF of a CR LF taken before
            const std::size_t next = special != 0 ? KNMimeCodec::lowestBit(special) : 64;
            if (next > at) { // at is past the block after a CR LF across its end
                std::size_t run = next - at;
                const unsigned char* from = b + at;
                while (run > room) {
                    w = softBreak(KNMimeCodec::copyShort(w, from, room));
                    from += room;
                    run -= room;
                    room = qpLineLimit;
                }
                w = KNMimeCodec::copyShort(w, from, run);
                room -= run;
                lastBlank = isBlank(static_cast<char>(b[next - 1]));
            }
            at = std::max(at, next);
            if (special == 0)
                break;
            special &= special - 1;
            if (b[next] == '\r' && b[next + 1] == '\n') {
                w = lineEnd(w);
                at = next + 2;
            } else {
                w = escape(w, b[next]);
                at = next + 1;
            }
        }
        i += at;
        o.advance(w);
    }
    // The rest a byte at a time.
    char* w = o.room(3 * (n - i) + 16);
    for (; i < n; ++i) {
        const unsigned char c = p[i];
        if (qpLiteral[c]) {
            if (room == 0) {
                w = softBreak(w);
                room = qpLineLimit;
            }
            *w++ = static_cast<char>(c);
            --room;
            lastBlank = isBlank(static_cast<char>(c));
        } else if (c == '\r' && i + 1 < n && p[i + 1] == '\n') {
            w = lineEnd(w);
            ++i;
        } else {
            w = escape(w, c);
        }
    }
    if (lastBlank)
        w = softBreak(w);
    o.advance(w);
    o.finish();
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
