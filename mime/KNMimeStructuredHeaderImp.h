#ifndef KN_MIME_KNMIMESTRUCTUREDHEADERIMP_H
#define KN_MIME_KNMIMESTRUCTUREDHEADERIMP_H

/// @class KNMimeStructuredHeaderImp
/// Header body for a structured field text with no model of its own (Content-ID,
/// Content-Location): parsing drops comments and extra white space, quoting is kept.

#include <mime/KNMimeHeaderImp.h>

class KNMimeHeader;

class KNMIME_EXPORT KNMimeStructuredHeaderImp : public KNMimeHeaderImp {
public:
    KNMimeStructuredHeaderImp() = default;
    /// A copy with the same label and value.
    KNMimeStructuredHeaderImp(const KNMimeStructuredHeaderImp& other) = default;
    ~KNMimeStructuredHeaderImp() override;

    /// A header handle over a new default body of this class: a factory creator.
    static KNMimeHeader make();

    KNCString getValueAsString() const override;
    void setValueFromString(const KNCString& text) override;
    void appendValueTo(KNCString& out) const override;
    KNMimeStructuredHeaderImp* copy() const override;

    /// The value as written.
    KNCString getValue() const { return value_; }
    /// Replaces the value.
    void setValue(const KNCString& value) { value_ = value; }

private:
    KNCString value_;
};

#endif
