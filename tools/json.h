#ifndef KN_TOOLS_JSON_H
#define KN_TOOLS_JSON_H

// The little JSON the tool writes (tree --json): values appended to one text buffer, strings
// escaped and always valid UTF-8.

#include <foundation/KNCString.h>

#include <cstddef>
#include <cstring>
#include <optional>
#include <string_view>

// A JSON text written piece by piece into one buffer that is kept, with its memory, from one
// text to the next. The pieces are small and many (a dozen per part of a message), so each
// is copied straight into room made at the end, without a call into the string per piece.
class JsonText {
public:
    // Empties the text; the memory stays for the next one.
    void clear() { size_ = 0; }
    std::string_view text() const { return std::string_view(buffer_.data(), size_); }

    // Appends `text` as it is: punctuation and the tool's own ASCII keys.
    void raw(std::string_view text)
    {
        std::memcpy(room(text.size()), text.data(), text.size());
        size_ += text.size();
    }
    void raw(char c)
    {
        *room(1) = c;
        ++size_;
    }
    // Appends `"key":`, after a comma unless `first`.
    void key(std::string_view key, bool first = false)
    {
        char* p = room(key.size() + 4);
        if (!first)
            *p++ = ',';
        *p++ = '"';
        std::memcpy(p, key.data(), key.size());
        p += key.size();
        *p++ = '"';
        *p++ = ':';
        size_ = static_cast<std::size_t>(p - buffer_.data());
    }
    // Appends `text` as a JSON string: quotes, backslashes and control characters escaped,
    // bytes that are not UTF-8 replaced by U+FFFD.
    void string(std::string_view text);
    // Appends the string, or null when there is none.
    void stringOrNull(const std::optional<KNCString>& text)
    {
        if (text)
            string(*text);
        else
            raw("null");
    }
    // Appends the number, or null when there is none.
    void number(std::optional<std::size_t> number);

private:
    // Room for `n` more bytes at the end of the text.
    char* room(std::size_t n)
    {
        if (buffer_.size() - size_ < n)
            grow(n);
        return buffer_.data() + size_;
    }
    void grow(std::size_t n);
    void appendEscaped(std::string_view text);

    KNCString buffer_; // its size is the room; the text is the first size_ bytes
    std::size_t size_ = 0;
};

#endif
