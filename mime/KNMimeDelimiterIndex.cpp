#include <mime/internal/KNMimeDelimiterIndex.h>

#include <algorithm>
#include <cstring>

KNMimeDelimiterIndex::KNMimeDelimiterIndex(std::string_view text, std::size_t maxRuns) : text_(text)
{
    const char* data = text.data();
    const std::size_t n = text.size();
    std::size_t i = 0;
    while (i < n) {
        const void* hit = std::memchr(data + i, '-', n - i);
        if (hit == nullptr)
            break;
        const std::size_t begin = static_cast<std::size_t>(static_cast<const char*>(hit) - data);
        std::size_t end = begin + 1;
        while (end < n && data[end] == '-')
            ++end;
        // The byte at `end` is not a dash (or the text ended), so the next run starts after it.
        i = end + 1;
        if (end - begin < 2)
            continue;
        if (ends_.size() == maxRuns) {
            usable_ = false;
            begins_ = {};
            ends_ = {};
            return;
        }
        begins_.push_back(begin);
        ends_.push_back(end);
    }
}

std::size_t KNMimeDelimiterIndex::find(std::string_view slice, std::string_view delimiter,
                                       std::size_t from) const noexcept
{
    const std::size_t length = delimiter.size();
    if (from > slice.size() || slice.size() - from < length)
        return std::string_view::npos;
    const std::size_t base = static_cast<std::size_t>(slice.data() - text_.data());
    const std::size_t first = base + from;                  // earliest start allowed
    const std::size_t last = base + slice.size() - length; // latest start that fits the slice
    const std::size_t dashes = std::min(delimiter.find_first_not_of('-'), length);

    if (dashes == length) {
        // All dashes: the delimiter matches at any place in a run long enough to hold it from
        // there, the first such place in a run being its start or `first`.
        auto run = std::lower_bound(ends_.begin(), ends_.end(), first + length);
        for (; run != ends_.end(); ++run) {
            const std::size_t i = static_cast<std::size_t>(run - ends_.begin());
            const std::size_t at = std::max(begins_[i], first);
            if (at > last)
                break;
            if (*run - at >= length)
                return at - base;
        }
        return std::string_view::npos;
    }

    // Otherwise the delimiter's leading dashes end where a run ends (the byte after them is
    // not a dash), so each run long enough offers exactly one place, and places ascend.
    const char* data = text_.data();
    const std::string_view rest = delimiter.substr(dashes);
    auto run = std::lower_bound(ends_.begin(), ends_.end(), first + dashes);
    for (; run != ends_.end(); ++run) {
        const std::size_t at = *run - dashes;
        if (at > last)
            break;
        const std::size_t i = static_cast<std::size_t>(run - ends_.begin());
        if (at >= begins_[i] && std::memcmp(data + *run, rest.data(), rest.size()) == 0)
            return at - base;
    }
    return std::string_view::npos;
}
