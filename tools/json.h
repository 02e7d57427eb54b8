#ifndef KN_TOOLS_JSON_H
#define KN_TOOLS_JSON_H

// The little JSON the tool writes (tree --json): values appended to one text buffer, strings
// escaped and always valid UTF-8.

#include <foundation/KNCString.h>

#include <cstddef>
#include <optional>
#include <string_view>

// Appends `text` as a JSON string: quotes, backslashes and control characters escaped, bytes
// that are not UTF-8 replaced by U+FFFD.
void appendJsonString(KNCString& out, std::string_view text);

// Appends the string, or null when there is none.
void appendJsonStringOrNull(KNCString& out, const std::optional<KNCString>& text);

// Appends `"key":` for one of the tool's own ASCII key names (written as it is); `first` is
// false when a member comes before it.
void appendJsonKey(KNCString& out, std::string_view key, bool first = false);

// Appends the number, or null when there is none.
void appendJsonNumber(KNCString& out, std::optional<std::size_t> number);

#endif
