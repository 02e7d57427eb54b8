#include "json.h"

#include <mail/KNMimeCharset.h>

#include <algorithm>

namespace {

// Whether a byte stands in a JSON string as it is: printable ASCII other than the quote and
// the backslash. Bytes from 0x80 on are part of UTF-8 sequences, checked separately.
bool isPlainJsonByte(unsigned char byte)
{
    return byte >= 0x20 && byte < 0x7f && byte != '"' && byte != '\\';
}

// Appends `text` escaped: runs of bytes that need no escape are appended whole.
void appendEscaped(KNCString& out, std::string_view text)
{
    static const char hex[] = "0123456789abcdef";
    std::size_t run = 0; // the start of the bytes not yet appended, which need no escape
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte >= 0x20 && byte != 0x7f && byte != '"' && byte != '\\')
            continue;
        out.append(text.data() + run, i - run);
        run = i + 1;
        switch (byte) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        default: {
            const char escape[] = {'\\', 'u', '0', '0', hex[byte >> 4], hex[byte & 0xf]};
            out.append(escape, sizeof escape);
        }
        }
    }
    out.append(text.data() + run, text.size() - run);
}

} // namespace

void appendJsonString(KNCString& out, std::string_view text)
{
    // Most strings the tool writes are plain ASCII: they go out in one piece, unchecked.
    std::size_t plain = 0;
    while (plain < text.size() && isPlainJsonByte(static_cast<unsigned char>(text[plain])))
        ++plain;
    const std::size_t start = out.size();
    out.resize(start + plain + 1);
    out[start] = '"';
    text.copy(out.data() + start + 1, plain);
    text.remove_prefix(plain);
    if (text.empty()) {
    } else if (KNMimeCharset::isValidUtf8(text)) {
        appendEscaped(out, text);
    } else { // reading the bytes as UTF-8 turns each stray byte into U+FFFD
        appendEscaped(out, KNMimeCharset::toUtf8(text, "utf-8").text);
    }
    out += '"';
}

void appendJsonStringOrNull(KNCString& out, const std::optional<KNCString>& text)
{
    if (text)
        appendJsonString(out, std::string_view(*text));
    else
        out.append("null", 4);
}

void appendJsonKey(KNCString& out, std::string_view key, bool first)
{
    // Keys are the tool's own ASCII names: nothing to check or escape.
    const std::size_t start = out.size();
    const std::size_t comma = first ? 0 : 1;
    out.resize(start + comma + key.size() + 3);
    char* p = out.data() + start;
    if (!first)
        *p++ = ',';
    *p++ = '"';
    p = std::copy(key.begin(), key.end(), p);
    *p++ = '"';
    *p = ':';
}

void appendJsonNumber(KNCString& out, std::optional<std::size_t> number)
{
    if (!number) {
        out.append("null", 4);
        return;
    }
    char digits[20];
    char* end = digits + sizeof digits;
    char* p = end;
    std::size_t n = *number;
    do {
        *--p = static_cast<char>('0' + n % 10);
        n /= 10;
    } while (n != 0);
    out.append(p, static_cast<std::size_t>(end - p));
}
