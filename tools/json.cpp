#include "json.h"

#include <mail/KNMimeCharset.h>

namespace {

void appendEscaped(KNCString& out, std::string_view text)
{
    static const char hex[] = "0123456789abcdef";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        switch (c) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        default:
            if (byte < 0x20 || byte == 0x7f) {
                out += "\\u00";
                out += hex[byte >> 4];
                out += hex[byte & 0xf];
            } else {
                out += c;
            }
        }
    }
}

} // namespace

void appendJsonString(KNCString& out, std::string_view text)
{
    out += '"';
    if (KNMimeCharset::isValidUtf8(text))
        appendEscaped(out, text);
    else // reading the bytes as UTF-8 turns each stray byte into U+FFFD
        appendEscaped(out, KNMimeCharset::toUtf8(text, "utf-8").text);
    out += '"';
}

void appendJsonStringOrNull(KNCString& out, const std::optional<KNCString>& text)
{
    if (text)
        appendJsonString(out, std::string_view(*text));
    else
        out += "null";
}

void appendJsonKey(KNCString& out, std::string_view key, bool first)
{
    if (!first)
        out += ',';
    appendJsonString(out, key);
    out += ':';
}

void appendJsonNumber(KNCString& out, std::optional<std::size_t> number)
{
    if (number)
        out += std::to_string(*number);
    else
        out += "null";
}
