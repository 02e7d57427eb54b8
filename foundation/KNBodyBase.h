#ifndef KN_FOUNDATION_KNBODYBASE_H
#define KN_FOUNDATION_KNBODYBASE_H

/// @class KNBodyBase
/// Base of every shared body: an intrusive, atomic reference count and a virtual destructor.

#include <foundation/KNExport.h>

#include <atomic>
#include <cstddef>

class KNMIME_EXPORT KNBodyBase {
public:
    KNBodyBase() noexcept : references_(0) {}
    /// A copied body is a new object: it starts unreferenced whatever the original's count.
    KNBodyBase(const KNBodyBase&) noexcept : references_(0) {}
    /// Assignment keeps this body's own reference count.
    KNBodyBase& operator=(const KNBodyBase&) noexcept { return *this; }
    virtual ~KNBodyBase();

    /// Adds one reference; called by the handles that share the body.
    void addReference() const noexcept { references_.fetch_add(1, std::memory_order_relaxed); }

    /// Drops one reference; true when it was the last one and the caller must delete the body.
    bool dropReference() const noexcept
    {
        return references_.fetch_sub(1, std::memory_order_acq_rel) == 1;
    }

    /// The number of handles referring to the body now.
    std::size_t referenceCount() const noexcept { return references_.load(std::memory_order_acquire); }

private:
    mutable std::atomic<std::size_t> references_;
};

#endif
