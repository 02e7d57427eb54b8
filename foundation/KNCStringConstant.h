#ifndef KN_FOUNDATION_KNCSTRINGCONSTANT_H
#define KN_FOUNDATION_KNCSTRINGCONSTANT_H

/// @file
/// A named text constant: a view of a string literal that is constant-initialised.

#include <foundation/KNCString.h>

#include <cstddef>
#include <string_view>
#include <utility>

/// A named text constant (a label, a parameter name, an encoding name): a view of a string
/// literal that is constant-initialised, so it reads correctly from any static initialiser,
/// and converts to a KNCString where one is needed. Comparisons with strings, views and
/// literals come from std::string_view.
class KNCStringConstant : public std::string_view {
public:
    /// A view of `literal`, without its terminating NUL.
    template <std::size_t N>
    constexpr KNCStringConstant(const char (&literal)[N]) noexcept // NOLINT: literals convert
        : std::string_view(literal, N - 1)
    {
    }

    /// A copy of the text.
    operator KNCString() const { return KNCString(data(), size()); }
    /// The literal, so always NUL-terminated.
    constexpr const char* c_str() const noexcept { return data(); }
};

/// Concatenation, which std::string does not offer with a view before C++26.
inline KNCString operator+(const KNCStringConstant& a, const KNCString& b)
{
    KNCString out;
    out.reserve(a.size() + b.size());
    return out.append(a).append(b);
}

/// Concatenation.
inline KNCString operator+(KNCString a, const KNCStringConstant& b)
{
    return std::move(a.append(b));
}

/// Concatenation.
inline KNCString operator+(const KNCStringConstant& a, const char* b)
{
    return KNCString(a) + b;
}

/// Concatenation.
inline KNCString operator+(const char* a, const KNCStringConstant& b)
{
    return KNCString(a).append(b);
}

/// Concatenation.
inline KNCString operator+(const KNCStringConstant& a, const KNCStringConstant& b)
{
    return KNCString(a).append(b);
}

#endif
