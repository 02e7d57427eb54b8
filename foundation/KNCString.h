#ifndef KN_FOUNDATION_KNCSTRING_H
#define KN_FOUNDATION_KNCSTRING_H

/// @file
/// The byte string every text of the library is held in, and the ASCII-only helpers that
/// compare, lower-case and hash it. Every test on characters is a byte test.

#include <foundation/KNExport.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// The byte string of the library: `std::string`, its bytes in whatever charset they came in.
using KNCString = std::string;
/// A list of byte strings.
using KNCStringList = std::vector<KNCString>;

/// The byte lower-cased if it is A-Z, unchanged otherwise.
inline constexpr char knToLowerAscii(char c) noexcept
{
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

/// The value of a hexadecimal digit of either case, or -1 for any other byte.
inline constexpr int knHexDigitValue(char c) noexcept
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

/// True when both texts have the same length and equal bytes, ignoring ASCII case.
KNMIME_EXPORT bool knEqualsIgnoreCase(std::string_view a, std::string_view b) noexcept;

/// A copy of the text with A-Z turned into a-z; every other byte is kept.
KNMIME_EXPORT KNCString knToLower(std::string_view text);

/// Hash of the exact bytes (case-sensitive), stable within one process.
KNMIME_EXPORT std::size_t knHash(std::string_view text) noexcept;

#endif
