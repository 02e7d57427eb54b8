#include "json.h"

#include <mail/KNMimeCharset.h>

namespace {

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
        default:
            out += "\\u00";
            out += hex[byte >> 4];
            out += hex[byte & 0xf];
        }
    }
    out.append(text.data() + run, text.size() - run);
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
    out += '"'; // keys are the tool's own ASCII names: nothing to check or escape
    out += key;
    out += "\":";
}

void appendJsonNumber(KNCString& out, std::optional<std::size_t> number)
{
    if (number)
        out += std::to_string(*number);
    else
        out += "null";
}
