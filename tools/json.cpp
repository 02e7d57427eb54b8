#include "json.h"

#include <mail/KNMimeCharset.h>

#include <algorithm>

namespace {

// Bytes that stand in a JSON string as they are: printable ASCII other than the quote and
// the backslash. Bytes from 0x80 on are part of UTF-8 sequences, checked separately.
struct PlainBytes {
    bool plain[256] = {};
    constexpr PlainBytes()
    {
        for (unsigned byte = 0x20; byte < 0x7f; ++byte)
            plain[byte] = byte != '"' && byte != '\\';
    }
};

constexpr PlainBytes plainBytes;

} // namespace

void JsonText::grow(std::size_t n)
{
    buffer_.resize(std::max(buffer_.size() * 2, std::max<std::size_t>(size_ + n, 4096)));
}

// Appends `text` escaped: runs of bytes that need no escape are appended whole.
void JsonText::appendEscaped(std::string_view text)
{
    static const char hex[] = "0123456789abcdef";
    std::size_t run = 0; // the start of the bytes not yet appended, which need no escape
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte >= 0x20 && byte != 0x7f && byte != '"' && byte != '\\')
            continue;
        raw(text.substr(run, i - run));
        run = i + 1;
        switch (byte) {
        case '"': raw("\\\""); break;
        case '\\': raw("\\\\"); break;
        case '\n': raw("\\n"); break;
        case '\r': raw("\\r"); break;
        case '\t': raw("\\t"); break;
        default: {
            const char escape[] = {'\\', 'u', '0', '0', hex[byte >> 4], hex[byte & 0xf]};
            raw(std::string_view(escape, sizeof escape));
        }
        }
    }
    raw(text.substr(run));
}

void JsonText::string(std::string_view text)
{
    // Most strings the tool writes are plain ASCII: they go out in one piece, unchecked.
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    std::size_t plain = 0;
    while (plain < text.size() && plainBytes.plain[bytes[plain]])
        ++plain;
    char* p = room(plain + 2);
    *p = '"';
    std::memcpy(p + 1, text.data(), plain);
    size_ += plain + 1;
    text.remove_prefix(plain);
    if (text.empty()) {
    } else if (KNMimeCharset::isValidUtf8(text)) {
        appendEscaped(text);
    } else { // reading the bytes as UTF-8 turns each stray byte into U+FFFD
        appendEscaped(KNMimeCharset::toUtf8(text, "utf-8").text);
    }
    raw('"');
}

void JsonText::number(std::optional<std::size_t> number)
{
    if (!number) {
        raw("null");
        return;
    }
    char digits[20];
    char* const end = digits + sizeof digits;
    char* p = end;
    std::size_t n = *number;
    do {
        *--p = static_cast<char>('0' + n % 10);
        n /= 10;
    } while (n != 0);
    raw(std::string_view(p, static_cast<std::size_t>(end - p)));
}
