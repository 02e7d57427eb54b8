#include <foundation/KNBoundsErr.h>

#include <foundation/KNCatMsg.h>
#include <foundation/KNMessage.h>

namespace {
const KNCatMsg indexError{"foundation_", 1, "index %zu out of range [0, %zu)"};
}

KNBoundsErr::KNBoundsErr(std::size_t index, std::size_t length)
    : KNxmsg(KNMessage(&indexError, index, length)), index_(index), length_(length)
{
}

KNBoundsErr::~KNBoundsErr() = default;

void KNBoundsErr::raise() const
{
    throw *this;
}
