#ifndef KN_MIME_INTERNAL_KNMIMEDELIMITERINDEX_H
#define KN_MIME_INTERNAL_KNMIMEDELIMITERINDEX_H

// The runs of dashes in one text, so that the delimiter lines of multiparts nested in it are
// found by visiting those runs instead of scanning the text again at every level. Not
// installed: internal to the library (exported only so that the tests can reach it).

#include <foundation/KNExport.h>

#include <cstddef>
#include <string_view>
#include <vector>

class KNMIME_EXPORT KNMimeDelimiterIndex {
public:
    // Records, in one pass, every run of two or more '-' in `text`, which must outlive the
    // index. A text holding more than `maxRuns` such runs is not indexed: usable() is false
    // and nothing is kept.
    KNMimeDelimiterIndex(std::string_view text, std::size_t maxRuns);

    // The most runs worth keeping for a text of `size` bytes: beyond that the index would
    // cost more memory than a direct search costs time.
    static constexpr std::size_t runLimit(std::size_t size) noexcept { return size / 32; }

    // False when the text held more runs than the index keeps.
    bool usable() const noexcept { return usable_; }

    // As KNSubstringFinder(delimiter).find(slice, from): the offset in `slice` of the first
    // occurrence of `delimiter` at or after `from` lying wholly inside `slice`, or npos.
    // `slice` is a view into the indexed text and `delimiter` starts with "--"; the index
    // must be usable.
    std::size_t find(std::string_view slice, std::string_view delimiter, std::size_t from) const noexcept;

private:
    std::string_view text_;
    // Run i covers [begins_[i], ends_[i]) of the text; runs are disjoint and in text order,
    // so both vectors ascend.
    std::vector<std::size_t> begins_;
    std::vector<std::size_t> ends_;
    bool usable_ = true;
};

#endif
