#ifndef KN_FOUNDATION_KNHANDLEBASE_H
#define KN_FOUNDATION_KNHANDLEBASE_H

/// @class KNHandleBase
/// Base of every handle: one counted reference to a shared body, or none.
///
/// Copying a handle shares the body; the last handle to let go deletes it. A handle class
/// states only what is its own: a constructor adopting its body type and a typed body()
/// built on checkedBody().

#include <foundation/KNBodyBase.h>
#include <foundation/KNExport.h>

class KNMIME_EXPORT KNHandleBase {
public:
    /// True when both handles refer to the very same body (identity, not value).
    bool sharesBodyWith(const KNHandleBase& other) const noexcept { return body_ == other.body_; }
    /// True when the handle refers to no body; any use of its body then throws KNTHRInvalidPointer.
    bool isEmpty() const noexcept { return body_ == nullptr; }

protected:
    /// Adopts the body (null gives an empty handle) and adds one reference to it.
    explicit KNHandleBase(KNBodyBase* body = nullptr) noexcept : body_(body)
    {
        if (body_ != nullptr)
            body_->addReference();
    }
    /// Copies share the body. Protected, so that a handle is only ever assigned a handle of
    /// its own class, never another class's body through a base reference.
    KNHandleBase(const KNHandleBase& other) noexcept : KNHandleBase(other.body_) {}
    /// Shares the body of `other` and lets go of the current one.
    KNHandleBase& operator=(const KNHandleBase& other) noexcept;
    /// A moved-from handle is empty; moving spares the reference count two atomic updates.
    KNHandleBase(KNHandleBase&& other) noexcept : body_(other.body_) { other.body_ = nullptr; }
    /// Takes the body of `other`, which becomes empty, and lets go of the current one.
    KNHandleBase& operator=(KNHandleBase&& other) noexcept;
    ~KNHandleBase() { release(body_); }

    /// The body, or KNTHRInvalidPointer ("Invalid pointer") for an empty handle.
    KNBodyBase* checkedBody() const
    {
        if (body_ == nullptr)
            throwInvalidPointer();
        return body_;
    }

    /// The body of a root handle, whose constructors accept bodies of class Body only, so
    /// that no check beyond the empty handle is needed.
    template <class Body>
    Body* rootBody() const
    {
        return static_cast<Body*>(checkedBody());
    }

    /// The body as the given body class, for handles that view another handle's body (typed
    /// headers, multiparts); an empty handle, or a body of another class, throws
    /// KNTHRInvalidPointer.
    template <class Body>
    Body* bodyAs() const
    {
        Body* typed = dynamic_cast<Body*>(checkedBody());
        if (typed == nullptr)
            throwInvalidPointer();
        return typed;
    }

    /// Refers to another body from now on, releasing the current one.
    void rebind(KNBodyBase* body) noexcept;

    /// Throws KNTHRInvalidPointer ("Invalid pointer").
    [[noreturn]] static void throwInvalidPointer();

private:
    // Handles are made and dropped once per header and part: these stay inline.
    static void release(KNBodyBase* body) noexcept
    {
        if (body != nullptr && body->dropReference())
            delete body;
    }

    KNBodyBase* body_;
};

#endif
