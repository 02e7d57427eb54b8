#include <mail/KNMimeCharset.h>

#include <iconv.h>

#include <cerrno>
#include <cstdint>
#include <cstring>

namespace {

constexpr char32_t replacementCharacter = 0xFFFD;

// The code points of windows-1252 for 0x80..0x9F; the five unassigned bytes keep their
// C1 control, as browsers and mail readers do.
constexpr char32_t windows1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// Each byte of windows-1252 as its UTF-8 bytes (one to three).
struct SingleByteTable {
    unsigned char bytes[256][3] = {};
    unsigned char length[256] = {};

    constexpr SingleByteTable()
    {
        for (unsigned b = 0; b < 256; ++b) {
            const char32_t cp = (b >= 0x80 && b < 0xA0) ? windows1252High[b - 0x80] : b;
            if (cp < 0x80) {
                bytes[b][0] = static_cast<unsigned char>(cp);
                length[b] = 1;
            } else if (cp < 0x800) {
                bytes[b][0] = static_cast<unsigned char>(0xC0 | (cp >> 6));
                bytes[b][1] = static_cast<unsigned char>(0x80 | (cp & 0x3F));
                length[b] = 2;
            } else {
                bytes[b][0] = static_cast<unsigned char>(0xE0 | (cp >> 12));
                bytes[b][1] = static_cast<unsigned char>(0x80 | ((cp >> 6) & 0x3F));
                bytes[b][2] = static_cast<unsigned char>(0x80 | (cp & 0x3F));
                length[b] = 3;
            }
        }
    }
};

constexpr SingleByteTable windows1252;

enum class Builtin { None, Utf8, Windows1252, Guess };

struct Alias {
    std::string_view label; // a view, so that comparing sizes rules most labels out at once
    const char* name;
};

// Labels mail writes for charsets under another name, or for a superset readers use instead.
constexpr Alias aliases[] = {
    {"ascii", "us-ascii"},
    {"ansi_x3.4-1968", "us-ascii"},
    {"us", "us-ascii"},
    {"utf8", "utf-8"},
    {"unicode-1-1-utf-8", "utf-8"},
    {"latin1", "windows-1252"},
    {"latin-1", "windows-1252"},
    {"l1", "windows-1252"},
    {"iso-8859-1", "windows-1252"},
    {"iso8859-1", "windows-1252"},
    {"iso_8859-1", "windows-1252"},
    {"iso_8859-1:1987", "windows-1252"},
    {"cp1252", "windows-1252"},
    {"x-cp1252", "windows-1252"},
    {"cp819", "windows-1252"},
    {"ks_c_5601-1987", "cp949"},
    {"ks_c_5601", "cp949"},
    {"ks_c_5601-1989", "cp949"},
    {"euc-kr", "cp949"},
    {"x-windows-949", "cp949"},
    {"gb2312", "gbk"},
    {"gb_2312-80", "gbk"},
    {"x-gbk", "gbk"},
    {"euc-cn", "gbk"},
    {"cn-gb", "gbk"},
    {"shift-jis", "shift_jis"},
    {"x-sjis", "shift_jis"},
    {"sjis", "shift_jis"},
    {"windows-31j", "cp932"},
    {"x-mac-roman", "macintosh"},
    {"iso-8859-8-i", "iso-8859-8"},
    {"windows-874", "cp874"},
    {"tis620", "tis-620"},
    {"x-unknown", "x-unknown"},
    {"unknown", "x-unknown"},
    {"unknown-8bit", "x-unknown"},
    {"x-user-defined", "x-unknown"},
    {"default", "x-unknown"},
    {"8bit", "x-unknown"},
};

Builtin builtinFor(std::string_view name)
{
    if (name == "us-ascii" || name == "utf-8")
        return Builtin::Utf8;
    if (name == "windows-1252")
        return Builtin::Windows1252;
    if (name == "x-unknown")
        return Builtin::Guess;
    return Builtin::None;
}

// A label iconv may be asked for: no "//" suffixes or other syntax smuggled in.
bool isPlainLabel(std::string_view name)
{
    if (name.empty() || name.size() > 64)
        return false;
    for (const char c : name) {
        const bool ok = (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_'
            || c == '.' || c == ':';
        if (!ok)
            return false;
    }
    return true;
}

// Length of the valid UTF-8 sequence at p (at most `left` bytes), or 0 when it is invalid.
std::size_t utf8SequenceLength(const unsigned char* p, std::size_t left) noexcept
{
    const unsigned char c = p[0];
    if (c < 0x80)
        return 1;
    if (c >= 0xC2 && c <= 0xDF)
        return (left >= 2 && (p[1] & 0xC0) == 0x80) ? 2 : 0;
    if (c >= 0xE0 && c <= 0xEF) {
        if (left < 3 || (p[1] & 0xC0) != 0x80 || (p[2] & 0xC0) != 0x80)
            return 0;
        if ((c == 0xE0 && p[1] < 0xA0) || (c == 0xED && p[1] >= 0xA0))
            return 0; // overlong, or a surrogate
        return 3;
    }
    if (c >= 0xF0 && c <= 0xF4) {
        if (left < 4 || (p[1] & 0xC0) != 0x80 || (p[2] & 0xC0) != 0x80 || (p[3] & 0xC0) != 0x80)
            return 0;
        if ((c == 0xF0 && p[1] < 0x90) || (c == 0xF4 && p[1] >= 0x90))
            return 0; // overlong, or past U+10FFFF
        return 4;
    }
    return 0;
}

// Length of the leading run of ASCII bytes.
std::size_t asciiPrefix(const unsigned char* p, std::size_t n) noexcept
{
    std::size_t i = 0;
    for (; n - i >= 8; i += 8) {
        std::uint64_t word;
        std::memcpy(&word, p + i, 8);
        if (word & 0x8080808080808080ULL)
            break;
    }
    while (i < n && p[i] < 0x80)
        ++i;
    return i;
}

// UTF-8 copied, each byte of an invalid sequence replaced by U+FFFD.
void utf8Repaired(std::string_view bytes, KNMimeCharset::Conversion& result)
{
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
    const std::size_t n = bytes.size();
    KNCString& out = result.text;
    out.reserve(out.size() + n);
    std::size_t i = 0;
    while (i < n) {
        const std::size_t run = asciiPrefix(p + i, n - i);
        out.append(bytes.data() + i, run);
        i += run;
        while (i < n && p[i] >= 0x80) {
            const std::size_t len = utf8SequenceLength(p + i, n - i);
            if (len == 0) {
                KNMimeCharset::appendUtf8(out, replacementCharacter);
                result.lossy = true;
                ++i;
            } else {
                out.append(bytes.data() + i, len);
                i += len;
            }
        }
    }
}

void windows1252Converted(std::string_view bytes, KNCString& out)
{
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
    const std::size_t n = bytes.size();
    const std::size_t start = out.size();
    out.resize(start + 3 * n);
    auto* w = reinterpret_cast<unsigned char*>(out.data()) + start;
    auto* const begin = w;
    for (std::size_t i = 0; i < n; ++i) {
        const unsigned char b = p[i];
        if (b < 0x80) {
            *w++ = b;
            continue;
        }
        const unsigned char* seq = windows1252.bytes[b];
        w[0] = seq[0];
        w[1] = seq[1];
        w[2] = seq[2];
        w += windows1252.length[b];
    }
    out.resize(start + static_cast<std::size_t>(w - begin));
}

// Converts through iconv; false when iconv does not know the charset.
bool iconvConverted(std::string_view bytes, const KNCString& name, KNMimeCharset::Conversion& result)
{
    if (!isPlainLabel(name))
        return false;
    iconv_t cd = iconv_open("UTF-8", name.c_str());
    if (cd == reinterpret_cast<iconv_t>(-1))
        return false;
    KNCString& out = result.text;
    std::size_t used = out.size();
    out.resize(used + bytes.size() * 2 + 16);
    char* in = const_cast<char*>(bytes.data());
    std::size_t inLeft = bytes.size();
    bool flushing = false;
    for (;;) {
        char* w = out.data() + used;
        std::size_t outLeft = out.size() - used;
        const std::size_t rc = flushing ? iconv(cd, nullptr, nullptr, &w, &outLeft)
                                        : iconv(cd, &in, &inLeft, &w, &outLeft);
        used = static_cast<std::size_t>(w - out.data());
        if (rc != static_cast<std::size_t>(-1)) {
            if (flushing)
                break;
            flushing = true; // emit what a stateful charset still holds
            continue;
        }
        if (errno == E2BIG) {
            out.resize(out.size() * 2 + 16);
            continue;
        }
        // EILSEQ: a byte that does not convert; EINVAL: a sequence cut at the end.
        out.resize(used);
        KNMimeCharset::appendUtf8(out, replacementCharacter);
        used = out.size();
        out.resize(used + inLeft * 2 + 16);
        result.lossy = true;
        if (errno != EILSEQ || inLeft == 0) {
            inLeft = 0;
            flushing = true;
            continue;
        }
        ++in;
        --inLeft;
    }
    out.resize(used);
    iconv_close(cd);
    return true;
}

} // namespace

KNCString KNMimeCharset::canonicalName(std::string_view charset)
{
    while (!charset.empty() && (charset.front() == ' ' || charset.front() == '\t' || charset.front() == '"'))
        charset.remove_prefix(1);
    while (!charset.empty() && (charset.back() == ' ' || charset.back() == '\t' || charset.back() == '"'))
        charset.remove_suffix(1);
    // An RFC 2231 language suffix ("utf-8*en") is no part of the name.
    const std::size_t star = charset.find('*');
    if (star != std::string_view::npos)
        charset = charset.substr(0, star);
    if (charset.empty())
        return "us-ascii";
    KNCString name = knToLower(charset);
    if (name == "utf-8" || name == "us-ascii") // most mail says one of these
        return name;
    for (const Alias& alias : aliases) {
        if (std::string_view(name) == alias.label)
            return alias.name;
    }
    return name;
}

bool KNMimeCharset::isKnown(std::string_view charset)
{
    const KNCString name = canonicalName(charset);
    if (builtinFor(name) != Builtin::None)
        return true;
    if (!isPlainLabel(name))
        return false;
    iconv_t cd = iconv_open("UTF-8", name.c_str());
    if (cd == reinterpret_cast<iconv_t>(-1))
        return false;
    iconv_close(cd);
    return true;
}

KNMimeCharset::Conversion KNMimeCharset::toUtf8(std::string_view bytes, std::string_view charset)
{
    Conversion result;
    const KNCString name = canonicalName(charset);
    switch (builtinFor(name)) {
    case Builtin::Utf8:
        utf8Repaired(bytes, result);
        return result;
    case Builtin::Windows1252:
        windows1252Converted(bytes, result.text);
        return result;
    case Builtin::Guess:
        if (isValidUtf8(bytes))
            result.text.assign(bytes.data(), bytes.size());
        else
            windows1252Converted(bytes, result.text);
        return result;
    case Builtin::None:
        break;
    }
    if (iconvConverted(bytes, name, result))
        return result;
    result.unknownCharset = true;
    utf8Repaired(bytes, result);
    return result;
}

bool KNMimeCharset::isValidUtf8(std::string_view text) noexcept
{
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const std::size_t n = text.size();
    std::size_t i = 0;
    while (i < n) {
        i += asciiPrefix(p + i, n - i);
        if (i == n)
            break;
        const std::size_t len = utf8SequenceLength(p + i, n - i);
        if (len == 0)
            return false;
        i += len;
    }
    return true;
}

void KNMimeCharset::appendUtf8(KNCString& out, char32_t cp)
{
    if (cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
        cp = replacementCharacter;
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}
