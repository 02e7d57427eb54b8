#include <foundation/KNSubstringFinder.h>

#include <cstring>

KNSubstringFinder::KNSubstringFinder(std::string_view needle) : needle_(needle), fallback_(needle.size(), 0)
{
    std::size_t border = 0;
    for (std::size_t i = 1; i < needle_.size(); ++i) {
        while (border > 0 && needle_[i] != needle_[border])
            border = fallback_[border - 1];
        if (needle_[i] == needle_[border])
            ++border;
        fallback_[i] = border;
    }
}

std::size_t KNSubstringFinder::find(std::string_view text, std::size_t from) const noexcept
{
    const std::size_t m = needle_.size();
    const std::size_t n = text.size();
    if (from > n)
        return std::string_view::npos;
    if (m == 0)
        return from;

    const char* data = text.data();
    std::size_t matched = 0;
    std::size_t i = from;
    while (i < n) {
        if (matched == 0) {
            // Nothing pending: let memchr skip to the next byte that can start a match.
            const void* hit = std::memchr(data + i, needle_[0], n - i);
            if (hit == nullptr)
                return std::string_view::npos;
            i = static_cast<std::size_t>(static_cast<const char*>(hit) - data) + 1;
            matched = 1;
        } else {
            const char c = data[i++];
            while (matched > 0 && c != needle_[matched])
                matched = fallback_[matched - 1];
            if (c == needle_[matched])
                ++matched;
        }
        if (matched == m)
            return i - m;
    }
    return std::string_view::npos;
}
