#ifndef KN_MIME_KNMIMEHEADERIMP_H
#define KN_MIME_KNMIMEHEADERIMP_H

/// @class KNMimeHeaderImp
/// The abstract body of a header: its label, and the value operations each body class
/// defines for the kind of value it holds.

#include <foundation/KNBodyBase.h>
#include <foundation/KNCString.h>
#include <foundation/KNExport.h>

#include <cstddef>
#include <string_view>
#include <utility>

class KNMIME_EXPORT KNMimeHeaderImp : public KNBodyBase {
public:
    ~KNMimeHeaderImp() override;

    /// The value as it is printed; may refuse a value that cannot be printed.
    virtual KNCString getValueAsString() const = 0;
    /// Parses a value text (already unfolded and trimmed) into the body.
    virtual void setValueFromString(const KNCString& text) = 0;
    /// Parses a value text like setValueFromString, free to take over the text's storage:
    /// a body that keeps the text as it stands moves it instead of copying it.
    virtual void takeValueFromString(KNCString&& text);
    /// Appends getValueAsString() to `out`; a body holding its printed value overrides this
    /// to append it without the intermediate copy.
    virtual void appendValueTo(KNCString& out) const;
    /// A new body of the same class with the same label and value, for a handle to adopt.
    virtual KNMimeHeaderImp* copy() const = 0;
    /// Compares the printed values exactly; a value that cannot be printed compares unequal.
    virtual bool compareValueTo(const KNMimeHeaderImp& other) const;

    /// Replaces the label; it is checked when printed.
    ///@{
    void setLabel(const KNCString& label) { label_ = label; }
    void setLabel(KNCString&& label) noexcept { label_ = std::move(label); }
    ///@}
    /// The label as written.
    KNCString getLabel() const { return label_; }

    /// True when the label equals `label` ignoring case; spares searches a copy per header.
    bool hasLabel(std::string_view label) const noexcept { return knEqualsIgnoreCase(label_, label); }
    /// Bodies made while a message is parsed are placed together in memory the parse's
    /// headers share, which is freed with the last of them; other bodies get memory of
    /// their own.
    ///@{
    static void* operator new(std::size_t size);
    static void operator delete(void* body, std::size_t size) noexcept;
    static void* operator new(std::size_t, void* where) noexcept { return where; }
    static void operator delete(void*, void*) noexcept {}
    ///@}

    /// "label: value" folded at 78 columns; a label that is empty or holds a blank, colon,
    /// control character or DEL is refused, and so is a value holding a CR or LF that is
    /// not part of a fold (INVALID_VALUE), which would start another header line.
    KNCString asString() const;
    /// Appends asString() to `out`, with the same checks; on an error `out` is as it was.
    void appendTo(KNCString& out) const;
    /// Labels equal ignoring case.
    bool compareLabelTo(const KNMimeHeaderImp& other) const;

protected:
    KNMimeHeaderImp() = default;
    /// Copies carry the label; derived bodies copy their values.
    ///@{
    KNMimeHeaderImp(const KNMimeHeaderImp& other) = default;
    KNMimeHeaderImp& operator=(const KNMimeHeaderImp& other) = default;
    ///@}

    /// Typed bodies compare values of their own class; a body of another class under the
    /// same label (possible after the factory registrations changed) falls back to the
    /// printed values.
    template <class Self, class Equal>
    bool compareAs(const KNMimeHeaderImp& other, Equal equal) const
    {
        const Self* same = dynamic_cast<const Self*>(&other);
        if (same == nullptr)
            return KNMimeHeaderImp::compareValueTo(other);
        return equal(static_cast<const Self&>(*this), *same);
    }

private:
    KNCString label_;
};

/// Labels equal ignoring case, then values equal by the first body's compareValueTo.
/// @relates KNMimeHeaderImp
KNMIME_EXPORT bool operator==(const KNMimeHeaderImp& a, const KNMimeHeaderImp& b);
/// The negation of operator==.
/// @relates KNMimeHeaderImp
KNMIME_EXPORT bool operator!=(const KNMimeHeaderImp& a, const KNMimeHeaderImp& b);

#endif
