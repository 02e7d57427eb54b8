#include <mime/internal/KNMimeScan.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

using KNMimeScan::isBlank;
using KNMimeScan::isWhitespace;

constexpr std::size_t lineLimit = 78;

// Bytes that may not appear in a token: the separators, the blank, controls 1 to 31 and DEL.
// Eight-bit bytes are token bytes.
struct NonTokenTable {
    bool flags[256] = {};

    constexpr NonTokenTable()
    {
        for (const char* p = " ()<>@,;:\\\"/[]?="; *p != '\0'; ++p)
            flags[static_cast<unsigned char>(*p)] = true;
        for (int c = 1; c < 32; ++c)
            flags[c] = true;
        flags[127] = true;
    }
};

constexpr NonTokenTable nonToken;

// Copies short runs byte by byte (the common case in dense text) and long ones with memcpy.
inline char* copyBytes(char* w, const char* from, std::size_t count) noexcept
{
    if (count <= 8) {
        for (std::size_t k = 0; k < count; ++k)
            w[k] = from[k];
    } else {
        std::memcpy(w, from, count);
    }
    return w + count;
}

constexpr std::uint64_t lowBits = 0x0101010101010101u;
constexpr std::uint64_t highBits = 0x8080808080808080u;

// Eight bytes from `p`, in whatever byte order the machine has: only whether some byte
// matches is asked of a word, never which one.
inline std::uint64_t loadWord(const char* p) noexcept
{
    std::uint64_t word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

// True when some byte of `word` equals `c`: a byte of x = word ^ c...c is zero exactly
// where (x - 0x01..) & ~x has its high bit set, for the lowest such byte at least.
inline bool hasByte(std::uint64_t word, char c) noexcept
{
    const std::uint64_t x = word ^ (lowBits * static_cast<unsigned char>(c));
    return ((x - lowBits) & ~x & highBits) != 0;
}

// Position of the first `c` in [from, to), or `to`. Header lines are short and the bytes
// sought dense, so the first stretch is searched eight bytes at a time inline; memchr, whose
// call costs more than such a line, takes over for long stretches such as bodies.
inline std::size_t findByte(const char* base, std::size_t from, std::size_t to, char c) noexcept
{
    constexpr std::size_t inlineStretch = 128;
    const std::size_t inlineEnd = to - from > inlineStretch ? from + inlineStretch : to;
    std::size_t i = from;
    for (; i + 8 <= inlineEnd; i += 8) {
        if (hasByte(loadWord(base + i), c)) {
            while (base[i] != c)
                ++i;
            return i;
        }
    }
    if (inlineEnd == to) {
        for (; i < to; ++i)
            if (base[i] == c)
                return i;
        return to;
    }
    const void* hit = std::memchr(base + i, c, to - i);
    return hit == nullptr ? to : static_cast<std::size_t>(static_cast<const char*>(hit) - base);
}

constexpr bool opensQuoteOrComment(char c) noexcept
{
    return c == '"' || c == '(';
}

bool hasNonBlank(std::string_view text, std::size_t from, std::size_t to) noexcept
{
    for (std::size_t i = from; i < to; ++i)
        if (!isBlank(text[i]))
            return true;
    return false;
}

// Where to break the line [p, e), which is longer than the limit: preferably at the last
// blank within the limit (unless only blanks precede it), else at the first blank past
// it. Returns e when the line has no usable blank.
std::size_t foldPoint(std::string_view text, std::size_t p, std::size_t e) noexcept
{
    std::size_t b = p + lineLimit;
    while (b > p && !isBlank(text[b]))
        --b;
    if (b != p && hasNonBlank(text, p, b))
        return b;
    std::size_t f = p + lineLimit + 1;
    while (f < e && !isBlank(text[f]))
        ++f;
    return f;
}

// Bytes that end a run of ordinary bytes in unquoted text: quote, comment, white space.
struct RunEndTable {
    bool flags[256] = {};

    constexpr RunEndTable()
    {
        for (const char* p = "\"( \t\r\n"; *p != '\0'; ++p)
            flags[static_cast<unsigned char>(*p)] = true;
    }
};

constexpr RunEndTable runEnd;

std::size_t endOfPlainRun(std::string_view text, std::size_t from) noexcept
{
    while (from < text.size() && !runEnd.flags[static_cast<unsigned char>(text[from])])
        ++from;
    return from;
}

// Steps over byte i of a comment nested `depth` deep; a backslash also takes the byte
// after it. Returns false when the byte closed the outermost comment.
bool stepInComment(std::string_view text, std::size_t& i, std::size_t& depth) noexcept
{
    const char c = text[i];
    if (c == '\\')
        ++i;
    else if (c == '(')
        ++depth;
    else if (c == ')')
        return --depth != 0;
    return true;
}

} // namespace

namespace KNMimeScan {

std::size_t findCrlf(std::string_view text, std::size_t from) noexcept
{
    const char* const base = text.data();
    const std::size_t n = text.size();
    while (from + 1 < n) {
        const std::size_t at = findByte(base, from, n - 1, '\r');
        if (at == n - 1)
            break;
        if (base[at + 1] == '\n')
            return at;
        from = at + 1;
    }
    return n;
}

std::size_t findLineBreak(std::string_view text) noexcept
{
    // CR and LF are below 0x0E, like only tab, NUL and a few other controls: a word without
    // any byte below 0x0E needs no closer look.
    const char* const data = text.data();
    const std::size_t n = text.size();
    std::size_t i = 0;
    while (i < n) {
        if (i + 8 <= n) {
            const std::uint64_t word = loadWord(data + i);
            if (((word - lowBits * 0x0E) & ~word & highBits) == 0) {
                i += 8;
                continue;
            }
        }
        const std::size_t end = i + 8 <= n ? i + 8 : n;
        for (; i < end; ++i)
            if (data[i] == '\r' || data[i] == '\n')
                return i;
    }
    return std::string_view::npos;
}

std::size_t findDelimiter(std::string_view text, char delim, std::size_t from) noexcept
{
    enum { Normal, Quoted, Comment } state = Normal;
    std::size_t depth = 0;
    const std::size_t n = text.size();
    for (std::size_t i = from; i < n; ++i) {
        const char c = text[i];
        switch (state) {
        case Normal:
            // Ordinary bytes come in runs: step to the next byte that matters. The delimiter
            // test comes first so that '"' or '(' can be delimiters too.
            while (i < n && text[i] != delim && !opensQuoteOrComment(text[i]))
                ++i;
            if (i == n || text[i] == delim)
                return i == n ? std::string_view::npos : i;
            if (text[i] == '"') {
                state = Quoted;
            } else {
                state = Comment;
                depth = 1;
            }
            break;
        case Quoted:
            if (c == '\\')
                ++i;
            else if (c == '"')
                state = Normal;
            break;
        case Comment:
            if (!stepInComment(text, i, depth))
                state = Normal;
            break;
        }
    }
    return std::string_view::npos;
}

bool isToken(std::string_view text) noexcept
{
    if (text.empty())
        return false;
    for (const char c : text) {
        if (c == '\0')
            break;
        if (nonToken.flags[static_cast<unsigned char>(c)])
            return false;
    }
    return true;
}

KNCString cleanToken(std::string_view text, bool unquote)
{
    // A plain name or value, with nothing to clean, is copied as it stands.
    if (endOfPlainRun(text, 0) == text.size())
        return KNCString(text);
    enum { Normal, Quoted, Comment, Blanks } state = Normal;
    std::size_t depth = 0;
    // Set when white space was copied inside quotes: such a trailing blank is data and stays.
    bool quotedSpace = false;
    KNCString out;
    out.reserve(text.size());
    const std::size_t n = text.size();
    std::size_t i = 0;
    while (i < n) {
        const char c = text[i];
        switch (state) {
        case Normal:
            if (c == '"') {
                if (!unquote)
                    out += c;
                state = Quoted;
            } else if (c == '(') {
                state = Comment;
                depth = 1;
            } else if (isWhitespace(c)) {
                if (!out.empty() && !isWhitespace(out.back())) {
                    out += ' ';
                    quotedSpace = false;
                }
                state = Blanks;
            } else {
                // Ordinary bytes come in runs (names, values): copy a whole run at once.
                const std::size_t end = endOfPlainRun(text, i + 1);
                out.append(text.data() + i, end - i);
                i = end;
                continue;
            }
            break;
        case Quoted:
            if (c == '"') {
                if (!unquote)
                    out += c;
                state = Normal;
            } else if (c == '\\') {
                if (!unquote)
                    out += c;
                if (i + 1 < n) {
                    ++i;
                    out += text[i];
                    quotedSpace = quotedSpace || isWhitespace(text[i]);
                }
            } else if (c != '\r' && c != '\n') {
                out += c;
                quotedSpace = quotedSpace || isWhitespace(c);
            }
            break;
        case Comment:
            if (!stepInComment(text, i, depth))
                state = Normal;
            break;
        case Blanks:
            if (!isWhitespace(c)) {
                state = Normal;
                continue; // handled again in the normal state
            }
            break;
        }
        ++i;
    }
    if (!out.empty() && isWhitespace(out.back()) && !quotedSpace)
        out.pop_back();
    return out;
}

KNCString unfoldAndTrim(std::string_view text)
{
    // Trimming first gives the same result as unfolding first: a fold is white space only,
    // so it lies either wholly inside the kept range or wholly outside it.
    std::size_t first = 0;
    std::size_t last = text.size();
    while (first < last && isWhitespace(text[first]))
        ++first;
    while (last > first && isWhitespace(text[last - 1]))
        --last;

    const char* const base = text.data();
    // Most values hold no line end at all: they are the trimmed slice as it stands.
    const std::size_t firstCr = findByte(base, first, last, '\r');
    if (firstCr == last)
        return KNCString(base + first, last - first);

    KNCString out;
    out.resize(last - first);
    char* const begin = out.data();
    char* w = begin;
    std::size_t run = first;
    std::size_t i = firstCr;
    while (i < last) {
        const std::size_t at = findByte(base, i, last, '\r');
        if (at == last)
            break;
        if (at + 2 < last && base[at + 1] == '\n' && isBlank(base[at + 2])) {
            w = copyBytes(w, base + run, at - run);
            run = at + 2; // the blank or tab stays
            i = at + 3;
        } else {
            i = at + 1;
        }
    }
    w = copyBytes(w, base + run, last - run);
    out.resize(static_cast<std::size_t>(w - begin));
    return out;
}

void appendFolded(KNCString& out, std::string_view text)
{
    const std::size_t at = out.size();
    out.resize(at + foldedSizeBound(text.size()));
    char* const end = writeFolded(out.data() + at, text);
    out.resize(static_cast<std::size_t>(end - out.data()));
}

char* writeFolded(char* w, std::string_view text) noexcept
{
    const std::size_t n = text.size();
    const char* const base = text.data();
    std::size_t p = 0;
    while (p < n) {
        const std::size_t e = findCrlf(text, p);
        while (e - p > lineLimit) {
            const std::size_t b = foldPoint(text, p, e);
            if (b == e)
                break;
            w = copyBytes(w, base + p, b - p);
            w = copyBytes(w, "\r\n", 2);
            p = b;
        }
        w = copyBytes(w, base + p, e - p);
        if (e != n)
            w = copyBytes(w, "\r\n", 2);
        p = e + 2;
    }
    return w;
}

} // namespace KNMimeScan
