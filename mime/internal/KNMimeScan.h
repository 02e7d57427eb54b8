#ifndef KN_MIME_INTERNAL_KNMIMESCAN_H
#define KN_MIME_INTERNAL_KNMIMESCAN_H

// Lexical scanners over views of header text, shared by the parsers inside the library.
// KNMimeUtils offers the same operations on whole strings; these take a view and a start
// offset so that parsers can walk one text by offsets instead of erasing pieces from its
// front and searching again. Not installed: internal to the library.

#include <foundation/KNCString.h>

#include <cstddef>
#include <string_view>

namespace KNMimeScan {

// White space of header text: blank, tab, CR and LF.
constexpr bool isWhitespace(char c) noexcept
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The bytes a folded line may break at, and that line ends may not follow: blank and tab.
constexpr bool isBlank(char c) noexcept
{
    return c == ' ' || c == '\t';
}

// Position of the first CR LF pair at or after `from`, or the length of the text.
std::size_t findCrlf(std::string_view text, std::size_t from) noexcept;

// Position of the first CR or LF in `text`, or npos; eight bytes at a time, as header
// values are checked for line breaks each time they are printed.
std::size_t findLineBreak(std::string_view text) noexcept;

// Position of the first `delim` at or after `from` outside quoted strings and comments,
// scanning from `from` in the unquoted state; npos when there is none.
std::size_t findDelimiter(std::string_view text, char delim, std::size_t from = 0) noexcept;

// True for a non-empty text whose bytes before the first NUL are all token bytes.
bool isToken(std::string_view text) noexcept;

// The cleaned token (see KNMimeUtils::cleanToken).
KNCString cleanToken(std::string_view text, bool unquote);

// The unfolded and trimmed text (see KNMimeUtils::unfoldAndTrim).
KNCString unfoldAndTrim(std::string_view text);

// Appends the folded form of `text` (see KNMimeUtils::fold) to `out`.
void appendFolded(KNCString& out, std::string_view text);

// Room that always holds the folded form of a text of `n` bytes: two consecutive folded
// pieces of one line span more than the line limit, so at most one CR LF is inserted per
// 39 bytes.
constexpr std::size_t foldedSizeBound(std::size_t n) noexcept
{
    return n + n / 16 + 16;
}

// Writes the folded form of `text` at `w`, which has foldedSizeBound(text.size()) bytes of
// room not overlapping the text; returns the end of what was written.
char* writeFolded(char* w, std::string_view text) noexcept;

} // namespace KNMimeScan

#endif
