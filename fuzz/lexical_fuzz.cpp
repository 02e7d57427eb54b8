// The lexical helpers of KNMimeUtils against literal re-implementations of their documented
// algorithms, written for clarity rather than speed: both must give the same result on
// every input. The first input byte picks a delimiter, the rest is the text.
#include "FuzzCheck.h"

#include <mime/KNMimeUtils.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

using fuzzcheck::check;

bool isWhitespace(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

// Three states; a backslash skips a byte inside quotes and comments, not outside.
std::size_t findDelimiter(const std::string& s, char delim)
{
    enum { Normal, Quoted, Comment } state = Normal;
    int depth = 0;
    for (std::size_t i = 0; i < s.size(); ++i) {
        const char c = s[i];
        if (state == Normal) {
            if (c == delim)
                return i;
            if (c == '"')
                state = Quoted;
            if (c == '(') {
                state = Comment;
                ++depth;
            }
        } else if (c == '\\') {
            ++i;
        } else if (state == Quoted) {
            if (c == '"')
                state = Normal;
        } else if (c == '(') {
            ++depth;
        } else if (c == ')') {
            if (depth == 1)
                state = Normal;
            --depth;
        }
    }
    return std::string::npos;
}

bool isToken(const std::string& s)
{
    if (s.empty())
        return false;
    const std::string specials = " ()<>@,;:\\\"/[]?=";
    for (const char c : s.substr(0, s.find('\0'))) {
        const unsigned char byte = static_cast<unsigned char>(c);
        if (specials.find(c) != std::string::npos || (byte >= 1 && byte <= 31) || byte == 127)
            return false;
    }
    return true;
}

std::string cleanToken(const std::string& s, bool unquote)
{
    enum { Normal, Quoted, Comment, Blanks } state = Normal;
    int depth = 0;
    bool quotedSpace = false;
    std::string out;
    for (std::size_t i = 0; i < s.size(); ++i) {
        const char c = s[i];
        if (state == Blanks) {
            if (isWhitespace(c))
                continue;
            state = Normal;
        }
        if (state == Normal) {
            if (c == '"') {
                if (!unquote)
                    out += c;
                state = Quoted;
            } else if (c == '(') {
                state = Comment;
                ++depth;
            } else if (isWhitespace(c)) {
                if (!out.empty() && !isWhitespace(out.back())) {
                    out += ' ';
                    quotedSpace = false;
                }
                state = Blanks;
            } else {
                out += c;
            }
        } else if (state == Quoted) {
            if (c == '"') {
                if (!unquote)
                    out += c;
                state = Normal;
            } else if (c == '\\') {
                if (!unquote)
                    out += c;
                if (i + 1 < s.size()) {
                    out += s[++i];
                    quotedSpace = quotedSpace || isWhitespace(s[i]);
                }
            } else if (c != '\r' && c != '\n') {
                out += c;
                quotedSpace = quotedSpace || isWhitespace(c);
            }
        } else if (c == '\\') {
            ++i;
        } else if (c == '(') {
            ++depth;
        } else if (c == ')') {
            if (depth == 1)
                state = Normal;
            --depth;
        }
    }
    if (!out.empty() && isWhitespace(out.back()) && !quotedSpace)
        out.pop_back();
    return out;
}

std::string quoteAndEscape(const std::string& s)
{
    std::string out = "\"";
    for (const char c : s) {
        if (c == '"' || c == '\\')
            out += '\\';
        out += c;
    }
    return out + "\"";
}

std::string unfoldAndTrim(std::string s)
{
    for (std::size_t i = 0; i + 2 < s.size(); ++i) {
        if (s[i] == '\r' && s[i + 1] == '\n' && isBlank(s[i + 2]))
            s.erase(i, 2); // the blank now at i is kept; the search goes on after it
    }
    while (!s.empty() && isWhitespace(s.front()))
        s.erase(0, 1);
    while (!s.empty() && isWhitespace(s.back()))
        s.pop_back();
    return s;
}

std::string fold(const std::string& s)
{
    std::string out;
    std::size_t p = 0;
    while (p < s.size()) {
        std::size_t e = s.find("\r\n", p);
        if (e == std::string::npos)
            e = s.size();
        if (e - p > 78) {
            std::size_t b = p + 78;
            while (b > p && !isBlank(s[b]))
                --b;
            if (b != p && s.substr(p, b - p).find_first_not_of(" \t") != std::string::npos) {
                out += s.substr(p, b - p) + "\r\n";
                p = b;
                continue;
            }
            std::size_t f = p + 79;
            while (f < e && !isBlank(s[f]))
                ++f;
            if (f != e) {
                out += s.substr(p, f - p) + "\r\n";
                p = f;
                continue;
            }
        }
        out += s.substr(p, e - p);
        if (e != s.size())
            out += "\r\n";
        p = e + 2;
    }
    return out;
}

// Every CR LF pair, lone CR and lone LF becomes the delimiter. (Written as three passes,
// one per kind of break, a pass for "\r" would join an LF it made into a CR with the LF
// after it: "\n\n" would become one break. The library keeps them two, which is the
// documented outcome, so this follows the outcome.)
std::string replaceLineDelimiter(const std::string& s, const std::string& delim)
{
    std::string out;
    for (std::size_t i = 0; i < s.size(); ++i) {
        if (s[i] == '\r' && i + 1 < s.size() && s[i + 1] == '\n') {
            out += delim;
            ++i;
        } else if (s[i] == '\r' || s[i] == '\n') {
            out += delim;
        } else {
            out += s[i];
        }
    }
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const char delim = static_cast<char>(data[0]);
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    const auto show = [&] { return "delimiter " + std::string(1, delim) + " text " + text; };

    check("findDelimiter", KNMimeUtils::findDelimiter(text, delim) == findDelimiter(text, delim), show);
    check("isToken", KNMimeUtils::isToken(text) == isToken(text), show);
    for (const bool unquote : {false, true})
        check("cleanToken", KNMimeUtils::cleanToken(text, unquote) == cleanToken(text, unquote), show);
    check("quoteAndEscape", KNMimeUtils::quoteAndEscape(text) == quoteAndEscape(text), show);
    check("unfoldAndTrim", KNMimeUtils::unfoldAndTrim(text) == unfoldAndTrim(text), show);
    check("fold", KNMimeUtils::fold(text) == fold(text), show);
    // Only the usual delimiters: for others the documented result is not defined this way.
    for (const char* usual : {"\r\n", "\n", "\r"})
        check("replaceLineDelimiter", KNMimeUtils::replaceLineDelimiter(text, usual) == replaceLineDelimiter(text, usual),
              show);
    return 0;
}
