#include <foundation/KNCString.h>

#include <cstring>

#include <functional>

bool knEqualsIgnoreCase(std::string_view a, std::string_view b) noexcept
{
    if (a.size() != b.size())
        return false;
    // Labels and names are mostly spelled alike: words of equal bytes need no lowering.
    const std::size_t n = a.size();
    std::size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        if (std::memcmp(a.data() + i, b.data() + i, 8) == 0)
            continue;
        for (std::size_t k = i; k < i + 8; ++k)
            if (knToLowerAscii(a[k]) != knToLowerAscii(b[k]))
                return false;
    }
    for (; i < n; ++i)
        if (knToLowerAscii(a[i]) != knToLowerAscii(b[i]))
            return false;
    return true;
}

KNCString knToLower(std::string_view text)
{
    KNCString lower(text);
    for (char& c : lower)
        c = knToLowerAscii(c);
    return lower;
}

std::size_t knHash(std::string_view text) noexcept
{
    return std::hash<std::string_view>{}(text);
}
