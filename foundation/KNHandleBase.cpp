#include <foundation/KNHandleBase.h>

#include <foundation/KNTHRInvalidPointer.h>

KNHandleBase& KNHandleBase::operator=(const KNHandleBase& other) noexcept
{
    rebind(other.body_);
    return *this;
}

KNHandleBase& KNHandleBase::operator=(KNHandleBase&& other) noexcept
{
    if (this != &other) {
        KNBodyBase* old = body_;
        body_ = other.body_;
        other.body_ = nullptr;
        release(old);
    }
    return *this;
}

void KNHandleBase::rebind(KNBodyBase* body) noexcept
{
    if (body == body_)
        return;
    // Take the new reference before dropping the old one: the old body may own the new one.
    if (body != nullptr)
        body->addReference();
    KNBodyBase* old = body_;
    body_ = body;
    release(old);
}

void KNHandleBase::throwInvalidPointer()
{
    throw KNTHRInvalidPointer();
}

