#include <foundation/KNCString.h>

#include <functional>

bool knEqualsIgnoreCase(std::string_view a, std::string_view b) noexcept
{
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
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
