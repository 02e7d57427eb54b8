#ifndef KN_FOUNDATION_KNBOUNDSERR_H
#define KN_FOUNDATION_KNBOUNDSERR_H

/// @class KNBoundsErr
/// Thrown when an index into an ordered list is not below its length.

#include <foundation/KNxmsg.h>

#include <cstddef>

class KNMIME_EXPORT KNBoundsErr : public KNxmsg {
public:
    /// The text reads "index <index> out of range [0, <length>)".
    KNBoundsErr(std::size_t index, std::size_t length);
    ~KNBoundsErr() override;

    /// The index that was refused.
    std::size_t index() const noexcept { return index_; }
    /// The length of the list at the time.
    std::size_t length() const noexcept { return length_; }

    [[noreturn]] void raise() const override;

private:
    std::size_t index_;
    std::size_t length_;
};

#endif
