#ifndef KN_MIME_KNMIMEUNSTRUCTUREDHEADERIMP_H
#define KN_MIME_KNMIMEUNSTRUCTUREDHEADERIMP_H

/// @class KNMimeUnstructuredHeaderImp
/// Header body for free text (Content-Description and every label the factory does not
/// know): the value is kept exactly as given.

#include <mime/KNMimeHeaderImp.h>

class KNMimeHeader;

class KNMIME_EXPORT KNMimeUnstructuredHeaderImp : public KNMimeHeaderImp {
public:
    KNMimeUnstructuredHeaderImp() = default;
    /// A copy with the same label and value.
    KNMimeUnstructuredHeaderImp(const KNMimeUnstructuredHeaderImp& other) = default;
    ~KNMimeUnstructuredHeaderImp() override;

    /// A header handle over a new default body of this class: a factory creator.
    static KNMimeHeader make();

    KNCString getValueAsString() const override;
    void setValueFromString(const KNCString& text) override;
    void takeValueFromString(KNCString&& text) override;
    void appendValueTo(KNCString& out) const override;
    KNMimeUnstructuredHeaderImp* copy() const override;

    /// The value as written.
    KNCString getValue() const { return value_; }
    /// Replaces the value.
    void setValue(const KNCString& value) { value_ = value; }

private:
    KNCString value_;
};

#endif
