#ifndef KN_FOUNDATION_KNSUBSTRINGFINDER_H
#define KN_FOUNDATION_KNSUBSTRINGFINDER_H

/// @class KNSubstringFinder
/// Finds one needle in texts in time linear in the text, whatever both hold: memchr jumps to
/// candidates, and a failure table (Knuth-Morris-Pratt) keeps partial matches from rescanning.
/// A plain find() degrades to text length times needle length on inputs such as a boundary
/// of a thousand 'a's searched in a megabyte of 'a's; this never does.

#include <foundation/KNExport.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

class KNMIME_EXPORT KNSubstringFinder {
public:
    /// Prepares the search for `needle`, in time linear in its length.
    explicit KNSubstringFinder(std::string_view needle);

    /// Offset of the first occurrence at or after `from`, or std::string_view::npos.
    /// An empty needle is found at `from` when `from` is not past the end.
    std::size_t find(std::string_view text, std::size_t from = 0) const noexcept;

    /// The text searched for.
    const std::string& needle() const noexcept { return needle_; }

private:
    std::string needle_;
    std::vector<std::size_t> fallback_; // longest proper border of needle_[0..i]
};

#endif
