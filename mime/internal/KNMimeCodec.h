#ifndef KN_MIME_INTERNAL_KNMIMECODEC_H
#define KN_MIME_INTERNAL_KNMIMECODEC_H

// Building blocks of the body codecs (base64, quoted-printable) that the strict codecs of
// KNMimeUtils and the forgiving decoders of KNMimeBodyDecoder share: an output written through
// a raw pointer, big-endian word access, the base64 tables and the wide base64 steps. Beside
// them, the plain one-character-at-a-time codecs (namespace KNMimeCodec::Plain) that say what
// the wide ones must give, for every input; the test suite compares the two. Not installed.

#include <foundation/KNCString.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeMessages.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace KNMimeCodec {

constexpr std::size_t base64LineBytes = 54; // input bytes per 72-character line
constexpr std::size_t qpLineLimit = 74;     // characters per line before the soft break

constexpr char base64Alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr bool isBlank(char c) noexcept
{
    return c == ' ' || c == '\t';
}

constexpr char hexDigit(unsigned c) noexcept
{
    return "0123456789ABCDEF"[c & 0x0F];
}

// --- output ------------------------------------------------------------------------------

// Writes a result through a raw pointer into one string reserved up front. The string is
// grown a block at a time, so that the zero fill of each resize touches bytes that are about
// to be written while they are in cache, instead of the whole result once more.
class KNMimeCodecOutput {
public:
    // `bound`: an upper bound of the result size, reserved once.
    KNMimeCodecOutput(KNCString& out, std::size_t bound) : out_(out)
    {
        out_.clear();
        out_.reserve(bound);
        w_ = out_.data();
        limit_ = w_;
    }

    // Makes at least `n` bytes writable at the returned pointer.
    char* room(std::size_t n)
    {
        if (static_cast<std::size_t>(limit_ - w_) < n)
            grow(n);
        return w_;
    }
    // Keeps everything written up to `w`, a pointer between room()'s result and its end.
    void advance(char* w) noexcept { w_ = w; }
    // The first byte of the result.
    char* begin() noexcept { return out_.data(); }
    // Cuts the result to the bytes kept.
    void finish() { out_.resize(static_cast<std::size_t>(w_ - out_.data())); }

private:
    void grow(std::size_t n)
    {
        constexpr std::size_t block = 16384;
        const auto kept = static_cast<std::size_t>(w_ - out_.data());
        const std::size_t within = std::max(out_.capacity(), kept + n);
        out_.resize(std::min(within, kept + std::max(n, block)));
        w_ = out_.data() + kept;
        limit_ = out_.data() + out_.size();
    }

    KNCString& out_;
    char* w_;
    char* limit_;
};

// --- words in big-endian order -------------------------------------------------------------

inline std::uint64_t loadBE64(const unsigned char* p) noexcept
{
#if defined(__GNUC__) && defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    std::uint64_t v;
    std::memcpy(&v, p, sizeof v);
    return __builtin_bswap64(v);
#elif defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    std::uint64_t v;
    std::memcpy(&v, p, sizeof v);
    return v;
#else
    std::uint64_t v = 0;
    for (int k = 0; k < 8; ++k)
        v = v << 8 | p[k];
    return v;
#endif
}

inline void storeBE64(void* to, std::uint64_t v) noexcept
{
#if defined(__GNUC__) && defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    v = __builtin_bswap64(v);
    std::memcpy(to, &v, sizeof v);
#elif defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    std::memcpy(to, &v, sizeof v);
#else
    auto* p = static_cast<unsigned char*>(to);
    for (int k = 7; k >= 0; --k, v >>= 8)
        p[k] = static_cast<unsigned char>(v);
#endif
}

// --- blocks of 64 bytes -------------------------------------------------------------------

// The positions of `c` among the 64 bytes at `p`: bit k is set when p[k] == c.
inline std::uint64_t positionsOf(const unsigned char* p, unsigned char c) noexcept
{
    std::uint64_t mask = 0;
#if defined(__SSE2__)
    const __m128i wanted = _mm_set1_epi8(static_cast<char>(c));
    for (int k = 0; k < 4; ++k) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16 * k));
        const auto bits = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, wanted)));
        mask |= std::uint64_t{bits} << (16 * k);
    }
#else
    for (int k = 0; k < 64; ++k)
        mask |= std::uint64_t{p[k] == c} << k;
#endif
    return mask;
}

// The index of the lowest set bit of a non-zero mask.
inline unsigned lowestBit(std::uint64_t mask) noexcept
{
#if defined(__GNUC__)
    return static_cast<unsigned>(__builtin_ctzll(mask));
#else
    unsigned k = 0;
    for (; (mask & 1) == 0; mask >>= 1)
        ++k;
    return k;
#endif
}

// Bytes copyShort may read and write past the ones it copies.
constexpr std::size_t copySlack = 32;

// Copies `n` bytes: the first 32 whatever `n` is (most runs between escapes are shorter, and
// a fixed copy costs less than a mispredicted loop end), the rest in steps of 16. Reads and
// writes up to copySlack - 1 bytes past them, which the caller gives the room for.
inline char* copyShort(char* w, const unsigned char* from, std::size_t n) noexcept
{
    std::memcpy(w, from, 16);
    std::memcpy(w + 16, from + 16, 16);
    for (std::size_t k = 32; k < n; k += 16)
        std::memcpy(w + k, from + k, 16);
    return w + n;
}

// Hexadecimal digits of either case to their values; every other byte to 0xFF, so that the
// OR of two looked-up digits is below 16 exactly when both are digits.
struct HexValueTable {
    unsigned char values[256] = {};

    constexpr HexValueTable()
    {
        for (unsigned c = 0; c < 256; ++c) {
            const int v = knHexDigitValue(static_cast<char>(c));
            values[c] = v < 0 ? 0xFF : static_cast<unsigned char>(v);
        }
    }
};

inline constexpr HexValueTable hexValues;

// --- base64 --------------------------------------------------------------------------------

// Twelve bits to their two base64 characters.
struct Base64PairTable {
    char pairs[4096][2] = {};

    constexpr Base64PairTable()
    {
        for (unsigned v = 0; v < 4096; ++v) {
            pairs[v][0] = base64Alphabet[v >> 6];
            pairs[v][1] = base64Alphabet[v & 0x3F];
        }
    }
};

inline constexpr Base64PairTable base64Pairs;

// Two characters, the first in the low byte of the index, to their twelve bits; a pair with
// a character outside the alphabet has the top bit, which no valid pair has, so one test of
// the OR of the pairs of a step tells whether all of it is plain. Of the 128 KiB, the pairs
// of alphabet characters lie in 192 cache lines (12 KiB), three for each second character.
constexpr std::uint16_t base64NotPlain = 0x8000;

struct Base64PairDecodeTable {
    std::uint16_t values[65536] = {};

    constexpr Base64PairDecodeTable()
    {
        unsigned char single[256] = {};
        for (auto& v : single)
            v = 0xFF;
        for (unsigned i = 0; i < 64; ++i)
            single[static_cast<unsigned char>(base64Alphabet[i])] = static_cast<unsigned char>(i);
        for (unsigned pair = 0; pair < 65536; ++pair) {
            const unsigned first = single[pair & 0xFF];
            const unsigned second = single[pair >> 8];
            values[pair] = (first | second) > 63 ? base64NotPlain
                                                 : static_cast<std::uint16_t>(first << 6 | second);
        }
    }
};

inline constexpr Base64PairDecodeTable base64PairValues;

// The base64 text of 54 * `lines` bytes at `p`, each line of 72 followed by CR LF, written
// at `w` (74 * `lines` characters). Reads 2 bytes past the data: the caller makes sure they
// are there.
inline char* encodeBase64Lines(char* w, const unsigned char* p, std::size_t lines) noexcept
{
    const auto* const pairs = base64Pairs.pairs;
    for (; lines != 0; --lines) {
        // Six bytes to eight characters, in nine steps a line.
        for (int k = 0; k < 9; ++k, p += 6, w += 8) {
            const std::uint64_t v = loadBE64(p);
            std::memcpy(w, pairs[v >> 52], 2);
            std::memcpy(w + 2, pairs[(v >> 40) & 0xFFF], 2);
            std::memcpy(w + 4, pairs[(v >> 28) & 0xFFF], 2);
            std::memcpy(w + 6, pairs[(v >> 16) & 0xFFF], 2);
        }
        *w++ = '\r';
        *w++ = '\n';
    }
    return w;
}

// Decodes groups of plain base64 characters from `p[i]` while at least eight are left before
// `end` and all of them are plain, writing three bytes for every four, and skips the CR LF
// pairs between such steps (both decoders skip line breaks between whole groups); stops at
// the first step holding any other character and returns its position. Writes up to 2
// bytes past the decoded ones: the caller gives the room.
inline std::size_t decodeBase64Plain(const unsigned char* p, std::size_t i, std::size_t end,
                                     unsigned char*& out) noexcept
{
    const auto* const t = base64PairValues.values;
    const auto pair = [p](std::size_t at) { return p[at] | p[at + 1] << 8; };
    unsigned char* w = out;
    while (end - i >= 8) {
        const std::uint32_t a = t[pair(i)], b = t[pair(i + 2)], c = t[pair(i + 4)], d = t[pair(i + 6)];
        if ((a | b | c | d) & base64NotPlain) {
            if (p[i] != '\r' || p[i + 1] != '\n')
                break;
            i += 2;
            continue;
        }
        storeBE64(w, std::uint64_t{a} << 52 | std::uint64_t{b} << 40 | std::uint64_t{c} << 28
                         | std::uint64_t{d} << 16);
        i += 8;
        w += 6;
    }
    out = w;
    return i;
}

// The bytes of the last, incomplete group of a base64 text, its `count` values in `acc`:
// two values give one byte, three give two, one nothing.
// Adds one sextet to the group gathered in `acc` (`count` sextets so far); a complete group
// of four is written at `w` as three bytes. Returns the end of what was written.
inline unsigned char* addBase64Sextet(unsigned char* w, std::uint32_t& acc, unsigned& count, std::uint32_t sextet) noexcept
{
    acc = acc << 6 | sextet;
    if (++count == 4) {
        w[0] = static_cast<unsigned char>(acc >> 16);
        w[1] = static_cast<unsigned char>(acc >> 8);
        w[2] = static_cast<unsigned char>(acc);
        w += 3;
        acc = 0;
        count = 0;
    }
    return w;
}

inline unsigned char* writeBase64Rest(unsigned char* w, std::uint32_t acc, unsigned count) noexcept
{
    if (count == 2) {
        *w++ = static_cast<unsigned char>(acc >> 4);
    } else if (count == 3) {
        *w++ = static_cast<unsigned char>(acc >> 10);
        *w++ = static_cast<unsigned char>(acc >> 2);
    }
    return w;
}

// The error of strict base64 decoding for a byte outside the alphabet.
[[noreturn]] inline void throwInvalidBase64(char c)
{
    KNThrow(KNMimeParseError(
        KNMessage(knmime_INVALID_BASE64_CHAR(), static_cast<int>(static_cast<unsigned char>(c)))));
}

// --- the plain codecs -----------------------------------------------------------------------
// One character at a time, as simply as the rules can be written down.

namespace Plain {

inline int base64Value(char c) noexcept
{
    const char* at = std::strchr(base64Alphabet, c);
    return c != '\0' && at != nullptr ? static_cast<int>(at - base64Alphabet) : -1;
}

// Strict base64 text of `data` (see KNMimeUtils::encodeBase64).
inline KNCString encodeBase64(std::string_view data)
{
    KNCString out;
    const auto* p = reinterpret_cast<const unsigned char*>(data.data());
    const std::size_t n = data.size();
    for (std::size_t i = 0; i < n; i += 3) {
        const std::size_t take = std::min<std::size_t>(3, n - i);
        const std::uint32_t v = std::uint32_t{p[i]} << 16 | (take > 1 ? std::uint32_t{p[i + 1]} << 8 : 0)
            | (take > 2 ? p[i + 2] : 0);
        out += base64Alphabet[v >> 18];
        out += base64Alphabet[(v >> 12) & 0x3F];
        out += take > 1 ? base64Alphabet[(v >> 6) & 0x3F] : '=';
        out += take > 2 ? base64Alphabet[v & 0x3F] : '=';
        if ((i + 3) % base64LineBytes == 0 && take == 3)
            out += "\r\n";
    }
    return out;
}

// The two plain base64 decoders below gather groups one character at a time into a string:
// kept simple and apart from the fast paths they are compared with.
inline void appendPlainSextet(KNCString& out, std::uint32_t& acc, unsigned& count, int sextet)
{
    acc = acc << 6 | static_cast<std::uint32_t>(sextet);
    if (++count == 4) {
        out += static_cast<char>(acc >> 16);
        out += static_cast<char>(acc >> 8);
        out += static_cast<char>(acc);
        acc = 0;
        count = 0;
    }
}

inline void appendPlainRest(KNCString& out, std::uint32_t acc, unsigned count)
{
    if (count == 2) {
        out += static_cast<char>(acc >> 4);
    } else if (count == 3) {
        out += static_cast<char>(acc >> 10);
        out += static_cast<char>(acc >> 2);
    }
}

// Strict base64 decoding (see KNMimeUtils::decodeBase64): trailing '=' dropped, CR and LF
// skipped, any other byte outside the alphabet refused.
inline KNCString decodeBase64(std::string_view text)
{
    std::size_t end = text.size();
    while (end > 0 && text[end - 1] == '=')
        --end;
    KNCString out;
    std::uint32_t acc = 0;
    unsigned count = 0;
    for (std::size_t i = 0; i < end; ++i) {
        const char c = text[i];
        if (c == '\r' || c == '\n')
            continue;
        const int v = base64Value(c);
        if (v < 0)
            throwInvalidBase64(c);
        appendPlainSextet(out, acc, count, v);
    }
    appendPlainRest(out, acc, count);
    return out;
}

// Forgiving base64 decoding (see KNMimeBodyDecoder::decodeBase64).
inline KNCString decodeBase64Forgiving(std::string_view text)
{
    KNCString out;
    std::uint32_t acc = 0;
    unsigned count = 0;
    for (const char c : text) {
        if (c == '=')
            break;
        const int v = base64Value(c);
        if (v < 0)
            continue;
        appendPlainSextet(out, acc, count, v);
    }
    appendPlainRest(out, acc, count);
    return out;
}

// Whether quoted-printable writes the byte as it is: printable ASCII except the restricted
// characters listed below, plus blank and tab.
inline bool isQpLiteral(unsigned char b) noexcept
{
    return b == ' ' || b == '\t' || (b > ' ' && b < 0x7F && std::strchr("=!\"#$@[\\]^`{|}~", b) == nullptr);
}

// Strict quoted-printable text of `data` (see KNMimeUtils::encodeQuotedPrintable).
inline KNCString encodeQuotedPrintable(std::string_view data)
{
    KNCString out;
    std::size_t column = 0;
    const auto lastIsBlank = [&out] { return !out.empty() && isBlank(out.back()); };
    for (std::size_t i = 0; i < data.size(); ++i) {
        const auto b = static_cast<unsigned char>(data[i]);
        if (b == '\r' && i + 1 < data.size() && data[i + 1] == '\n') {
            if (lastIsBlank())
                out += "=\r\n";
            out += "\r\n";
            column = 0;
            ++i;
            continue;
        }
        const std::size_t length = isQpLiteral(b) ? 1 : 3;
        column += length;
        if (column > qpLineLimit) {
            out += "=\r\n";
            column = length;
        }
        if (length == 1)
            out += static_cast<char>(b);
        else
            out.append({'=', hexDigit(b >> 4), hexDigit(b)});
    }
    if (lastIsBlank())
        out += "=\r\n";
    return out;
}

// Strict quoted-printable decoding (see KNMimeUtils::decodeQuotedPrintable).
inline KNCString decodeQuotedPrintable(std::string_view text, bool stripTrailingWhitespace)
{
    const std::size_t n = text.size();
    KNCString out;
    bool atLineStart = true;
    const auto trim = [&] {
        if (stripTrailingWhitespace && !atLineStart)
            while (!out.empty() && isBlank(out.back()))
                out.pop_back();
    };
    std::size_t i = 0;
    while (i < n) {
        const char c = text[i];
        if (c == '=') {
            if (n - i < 3) { // a cut escape at the very end stays as it is
                out += text.substr(i);
                atLineStart = false;
                break;
            }
            if (text[i + 1] == '\r' && text[i + 2] == '\n') {
                atLineStart = true;
                i += 3;
                continue;
            }
            const int high = knHexDigitValue(text[i + 1]);
            const int low = knHexDigitValue(text[i + 2]);
            atLineStart = false;
            if (high >= 0 && low >= 0) {
                out += static_cast<char>(high << 4 | low);
                i += 3;
            } else {
                out += text.substr(i, 2);
                i += 2;
            }
        } else if (c == '\r' && i + 1 < n && text[i + 1] == '\n') {
            trim();
            out += "\r\n";
            atLineStart = true;
            i += 2;
        } else {
            out += c;
            atLineStart = false;
            ++i;
        }
    }
    trim();
    return out;
}

// Forgiving quoted-printable decoding (see KNMimeBodyDecoder::decodeQuotedPrintable), a
// line at a time.
inline KNCString decodeQuotedPrintableForgiving(std::string_view text)
{
    KNCString out;
    std::size_t pos = 0;
    while (pos < text.size()) {
        const std::size_t lf = text.find('\n', pos);
        const bool hasBreak = lf != std::string_view::npos;
        std::string_view line = text.substr(pos, hasBreak ? lf - pos : std::string_view::npos);
        pos = hasBreak ? lf + 1 : text.size();
        const bool crlf = hasBreak && !line.empty() && line.back() == '\r';
        if (crlf)
            line.remove_suffix(1);
        while (!line.empty() && isBlank(line.back()))
            line.remove_suffix(1);
        const bool softBreak = !line.empty() && line.back() == '=';
        if (softBreak)
            line.remove_suffix(1);
        for (std::size_t i = 0; i < line.size(); ++i) {
            const int high = line[i] == '=' && i + 2 < line.size() ? knHexDigitValue(line[i + 1]) : -1;
            const int low = high >= 0 ? knHexDigitValue(line[i + 2]) : -1;
            if (low >= 0) {
                out += static_cast<char>(high << 4 | low);
                i += 2;
            } else {
                out += line[i];
            }
        }
        if (hasBreak && !softBreak)
            out += crlf ? "\r\n" : "\n";
    }
    return out;
}

} // namespace Plain

} // namespace KNMimeCodec

#endif
