#ifndef KN_FOUNDATION_KNTCOUNTINGPOINTER_H
#define KN_FOUNDATION_KNTCOUNTINGPOINTER_H

/// @class KNTCountingPointer
/// A shared owning pointer whose count lives beside the object; dereferencing a null one
/// throws KNTHRInvalidPointer instead of crashing.

#include <foundation/KNTHRInvalidPointer.h>

#include <atomic>
#include <utility>

/// The counter policy: a count changed atomically, safe to share across threads.
class KNAtomicCounter {
public:
    KNAtomicCounter() noexcept : count_(1) {}
    /// Adds one to the count.
    void increment() noexcept { count_.fetch_add(1, std::memory_order_relaxed); }
    /// True when the count reached zero.
    bool decrement() noexcept { return count_.fetch_sub(1, std::memory_order_acq_rel) == 1; }
    /// The count now.
    long value() const noexcept { return count_.load(std::memory_order_acquire); }

private:
    std::atomic<long> count_;
};

template <class T, class Counter = KNAtomicCounter>
class KNTCountingPointer {
public:
    KNTCountingPointer() noexcept = default;

    /// Takes ownership of `object` (which may be null).
    explicit KNTCountingPointer(T* object) : object_(object), counter_(object ? new Counter : nullptr) {}

    /// Shares the object, adding one to its count.
    KNTCountingPointer(const KNTCountingPointer& other) noexcept
        : object_(other.object_), counter_(other.counter_)
    {
        if (counter_ != nullptr)
            counter_->increment();
    }

    /// Takes the object of `other`, which becomes null.
    KNTCountingPointer(KNTCountingPointer&& other) noexcept
        : object_(std::exchange(other.object_, nullptr)), counter_(std::exchange(other.counter_, nullptr))
    {
    }

    /// Shares the object of `other` and lets go of the current one.
    KNTCountingPointer& operator=(KNTCountingPointer other) noexcept
    {
        std::swap(object_, other.object_);
        std::swap(counter_, other.counter_);
        return *this;
    }

    ~KNTCountingPointer()
    {
        if (counter_ != nullptr && counter_->decrement()) {
            delete object_;
            delete counter_;
        }
    }

    /// The object, or null.
    T* get() const noexcept { return object_; }
    /// The object; KNTHRInvalidPointer for a null pointer.
    T* operator->() const { return checked(); }
    /// The object; KNTHRInvalidPointer for a null pointer.
    T& operator*() const { return *checked(); }
    /// True when the pointer holds an object.
    explicit operator bool() const noexcept { return object_ != nullptr; }

    /// Number of pointers sharing the object (0 for a null pointer).
    long useCount() const noexcept { return counter_ ? counter_->value() : 0; }

private:
    T* checked() const
    {
        if (object_ == nullptr)
            throw KNTHRInvalidPointer();
        return object_;
    }

    T* object_ = nullptr;
    Counter* counter_ = nullptr;
};

#endif
