#ifndef KN_MIME_INTERNAL_KNMIMEDELIMITERINDEX_H
#define KN_MIME_INTERNAL_KNMIMEDELIMITERINDEX_H

// The runs of dashes in one text, so that the delimiter lines of multiparts nested in it are
// found by visiting those runs instead of scanning the text again at every level. The text is
// scanned once, as far as the searches so far needed. Not installed: internal to the library
// (exported only so that the tests can reach it).

#include <foundation/KNExport.h>

#include <cstddef>
#include <string_view>
#include <vector>

class KNSubstringFinder;

class KNMIME_EXPORT KNMimeDelimiterIndex {
public:
    // An index of the runs of two or more '-' in `text`, which must outlive it. Once the
    // text shows more than `maxRuns` such runs, the index lets them go and finds by
    // searching directly.
    KNMimeDelimiterIndex(std::string_view text, std::size_t maxRuns);

    // The most runs worth keeping for a text of `size` bytes: beyond that the index would
    // cost more memory than a direct search costs time.
    static constexpr std::size_t runLimit(std::size_t size) noexcept { return size / 32; }

    // False once the text showed more runs than the index keeps.
    bool usable() const noexcept { return usable_; }

    // As delimiter.find(slice, from): the offset in `slice` of the first occurrence of the
    // delimiter at or after `from` lying wholly inside `slice`, or npos. `slice` is a view
    // into the indexed text and the delimiter starts with "--". Reads the text only past
    // where earlier searches read it.
    std::size_t find(std::string_view slice, const KNSubstringFinder& delimiter, std::size_t from);

private:
    // Records the next run past the part of the text read so far; false at the text's end
    // or when that run is one too many.
    bool recordNextRun();

    std::string_view text_;
    std::size_t maxRuns_;
    std::size_t scanned_ = 0; // every run starting before this is recorded
    // The bytes [begin, end) of the text.
    struct Run {
        std::size_t begin;
        std::size_t end;
    };
    std::vector<Run> runs_; // disjoint and in text order
    bool usable_ = true;
};

#endif
