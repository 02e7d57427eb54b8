#ifndef KN_FOUNDATION_KNTORDEREDLIST_H
#define KN_FOUNDATION_KNTORDEREDLIST_H

// An ordered list with the index rules every list of the library follows: reading or
// removing at an index not below the length throws KNBoundsErr; inserting at the length
// appends, and past it throws KNBoundsErr naming one below the index passed.

#include <foundation/KNBoundsErr.h>

#include <cstddef>
#include <iterator>
#include <vector>

template <class T>
class KNTOrderedList {
public:
    using const_iterator = typename std::vector<T>::const_iterator;

    std::size_t size() const noexcept { return items_.size(); }
    bool empty() const noexcept { return items_.empty(); }
    const_iterator begin() const noexcept { return items_.begin(); }
    const_iterator end() const noexcept { return items_.end(); }

    // Unchecked access, for loops that stay below size().
    const T& operator[](std::size_t i) const noexcept { return items_[i]; }

    const T& at(std::size_t i) const
    {
        if (i >= items_.size())
            throw KNBoundsErr(i, items_.size());
        return items_[i];
    }

    void append(const T& item) { items_.push_back(item); }

    // The new item gets index i. The error reports i - 1: the last index that would have
    // been refused as a plain index.
    void insertAt(std::size_t i, const T& item)
    {
        if (i > items_.size())
            throw KNBoundsErr(i - 1, items_.size());
        items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(i), item);
    }

    void removeAt(std::size_t i)
    {
        if (i >= items_.size())
            throw KNBoundsErr(i, items_.size());
        items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(i));
    }

    void clear() noexcept { items_.clear(); }
    // Moves every item to the end of `out`, leaving the list empty.
    void moveAllTo(std::vector<T>& out)
    {
        out.insert(out.end(), std::make_move_iterator(items_.begin()), std::make_move_iterator(items_.end()));
        items_.clear();
    }
    void reserve(std::size_t n) { items_.reserve(n); }

    friend bool operator==(const KNTOrderedList& a, const KNTOrderedList& b) { return a.items_ == b.items_; }
    friend bool operator!=(const KNTOrderedList& a, const KNTOrderedList& b) { return !(a == b); }

private:
    std::vector<T> items_;
};

#endif
