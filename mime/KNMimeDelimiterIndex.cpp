#include <mime/internal/KNMimeDelimiterIndex.h>

#include <foundation/KNSubstringFinder.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

// Room for the runs of a typical message (a few delimiter lines per level) in one allocation.
constexpr std::size_t initialRuns = 16;

std::uint64_t eightBytesAt(const char* p) noexcept
{
    std::uint64_t word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

// Compares `rest` with the text at `p`, which holds at least rest.size() bytes. Runs of one
// text are compared with the same rest again and again (every level of a nested message
// visits the delimiter lines of all the levels inside it), so a rest of 8 bytes or more is
// compared by its first and last eight bytes, read as words, before any call.
class RestOfDelimiter {
public:
    explicit RestOfDelimiter(std::string_view rest) : rest_(rest)
    {
        if (rest.size() >= sizeof(std::uint64_t)) {
            head_ = eightBytesAt(rest.data());
            tail_ = eightBytesAt(rest.data() + rest.size() - sizeof(std::uint64_t));
        }
    }

    bool matches(const char* p) const noexcept
    {
        constexpr std::size_t word = sizeof(std::uint64_t);
        const std::size_t size = rest_.size();
        if (size < word)
            return std::memcmp(p, rest_.data(), size) == 0;
        return eightBytesAt(p) == head_ && eightBytesAt(p + size - word) == tail_ &&
               (size <= 2 * word || std::memcmp(p + word, rest_.data() + word, size - 2 * word) == 0);
    }

private:
    std::string_view rest_;
    std::uint64_t head_ = 0;
    std::uint64_t tail_ = 0;
};

} // namespace

KNMimeDelimiterIndex::KNMimeDelimiterIndex(std::string_view text, std::size_t maxRuns)
    : text_(text), maxRuns_(maxRuns)
{
}

bool KNMimeDelimiterIndex::recordNextRun()
{
    const char* data = text_.data();
    const std::size_t n = text_.size();
    while (scanned_ < n) {
        const void* hit = std::memchr(data + scanned_, '-', n - scanned_);
        if (hit == nullptr)
            break;
        const std::size_t begin = static_cast<std::size_t>(static_cast<const char*>(hit) - data);
        std::size_t end = begin + 1;
        while (end < n && data[end] == '-')
            ++end;
        // The byte at `end` is not a dash (or the text ended), so the next run starts after it.
        scanned_ = std::min(end + 1, n);
        if (end - begin < 2)
            continue;
        if (runs_.size() == maxRuns_) {
            usable_ = false;
            runs_ = {};
            return false;
        }
        if (runs_.empty())
            runs_.reserve(initialRuns);
        runs_.push_back({begin, end});
        return true;
    }
    scanned_ = n;
    return false;
}

std::size_t KNMimeDelimiterIndex::find(std::string_view slice, const KNSubstringFinder& delimiter, std::size_t from)
{
    if (!usable_)
        return delimiter.find(slice, from);
    const std::string_view needle = delimiter.needle();
    const std::size_t length = needle.size();
    if (from > slice.size() || slice.size() - from < length)
        return std::string_view::npos;
    const std::size_t base = static_cast<std::size_t>(slice.data() - text_.data());
    const std::size_t first = base + from;                  // earliest start allowed
    const std::size_t last = base + slice.size() - length; // latest start that fits the slice
    const std::size_t dashes = std::min(needle.find_first_not_of('-'), length);
    const bool allDashes = dashes == length;
    // A run can hold a match only when it ends at or after this: an all-dash delimiter fits
    // in a run from `first` on, any other one's leading dashes end where a run ends.
    const std::size_t lowestEnd = first + dashes;
    const RestOfDelimiter rest(needle.substr(dashes));
    const char* data = text_.data();

    const auto endsBefore = [](const Run& run, std::size_t offset) { return run.end < offset; };
    std::size_t i = static_cast<std::size_t>(std::lower_bound(runs_.begin(), runs_.end(), lowestEnd, endsBefore) -
                                             runs_.begin());
    for (;;) {
        const Run* runs = runs_.data();
        for (const std::size_t count = runs_.size(); i < count; ++i) {
            const std::size_t begin = runs[i].begin;
            const std::size_t end = runs[i].end;
            if (end < lowestEnd)
                continue; // only a run just read can lie before the part searched
            if (allDashes) {
                // The first place in the run from where the delimiter could fit.
                const std::size_t at = std::max(begin, first);
                if (at > last)
                    return std::string_view::npos;
                if (end - at >= length)
                    return at - base;
            } else {
                // Each run offers one place, and places ascend with the runs.
                const std::size_t at = end - dashes;
                if (at > last)
                    return std::string_view::npos;
                if (at >= begin && rest.matches(data + end))
                    return at - base;
            }
        }
        // Past the runs read so far: read the next one.
        if (!recordNextRun())
            return usable_ ? std::string_view::npos : delimiter.find(slice, from);
    }
}
