#ifndef KN_FOUNDATION_KNTHRINVALIDPOINTER_H
#define KN_FOUNDATION_KNTHRINVALIDPOINTER_H

/// @class KNTHRInvalidPointer
/// Thrown when an empty handle, pointer or callable is used: the text is "Invalid pointer".

#include <foundation/KNxmsg.h>

class KNMIME_EXPORT KNTHRInvalidPointer : public KNxmsg {
public:
    KNTHRInvalidPointer();
    ~KNTHRInvalidPointer() override;

    [[noreturn]] void raise() const override;
};

#endif
