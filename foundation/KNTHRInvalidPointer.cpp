#include <foundation/KNTHRInvalidPointer.h>

KNTHRInvalidPointer::KNTHRInvalidPointer() : KNxmsg(KNCString("Invalid pointer")) {}

KNTHRInvalidPointer::~KNTHRInvalidPointer() = default;

void KNTHRInvalidPointer::raise() const
{
    throw *this;
}
