#ifndef KN_FOUNDATION_KNTORDEREDLIST_H
#define KN_FOUNDATION_KNTORDEREDLIST_H

/// @class KNTOrderedList
/// An ordered list with the index rules every list of the library follows: reading or
/// removing at an index not below the length throws KNBoundsErr; inserting at the length
/// appends, and past it throws KNBoundsErr naming one below the index passed.

#include <foundation/KNBoundsErr.h>

#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

template <class T>
class KNTOrderedList {
public:
    /// Iterator over the items in order, read-only.
    using const_iterator = typename std::vector<T>::const_iterator;

    /// The number of items.
    std::size_t size() const noexcept { return items_.size(); }
    /// True when there are no items.
    bool empty() const noexcept { return items_.empty(); }
    /// The first item.
    const_iterator begin() const noexcept { return items_.begin(); }
    /// Past the last item.
    const_iterator end() const noexcept { return items_.end(); }

    /// Unchecked access, for loops that stay below size().
    const T& operator[](std::size_t i) const noexcept { return items_[i]; }

    /// Item i; KNBoundsErr when i is not below the length.
    const T& at(std::size_t i) const
    {
        if (i >= items_.size())
            throw KNBoundsErr(i, items_.size());
        return items_[i];
    }

    /// Adds the item at the end.
    void append(const T& item) { items_.push_back(item); }

    /// The new item gets index i. The error reports i - 1: the last index that would have
    /// been refused as a plain index.
    void insertAt(std::size_t i, const T& item)
    {
        if (i > items_.size())
            throw KNBoundsErr(i - 1, items_.size());
        items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(i), item);
    }

    /// Removes item i; KNBoundsErr when i is not below the length.
    void removeAt(std::size_t i)
    {
        if (i >= items_.size())
            throw KNBoundsErr(i, items_.size());
        items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(i));
    }

    /// Removes every item.
    void clear() noexcept { items_.clear(); }
    /// Moves every item to the end of `out`, leaving the list empty.
    void moveAllTo(std::vector<T>& out)
    {
        out.insert(out.end(), std::make_move_iterator(items_.begin()), std::make_move_iterator(items_.end()));
        items_.clear();
    }
    /// Replaces every item by those of `items`, taking over its storage.
    void assign(std::vector<T>&& items) noexcept { items_ = std::move(items); }
    /// Reserves room for `n` items.
    void reserve(std::size_t n) { items_.reserve(n); }

    /// Same items in the same order.
    friend bool operator==(const KNTOrderedList& a, const KNTOrderedList& b) { return a.items_ == b.items_; }
    /// Not the same items in the same order.
    friend bool operator!=(const KNTOrderedList& a, const KNTOrderedList& b) { return !(a == b); }

private:
    std::vector<T> items_;
};

#endif
