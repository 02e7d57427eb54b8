#ifndef KN_MIME_KNMIMECONTENTTRANSFERENCODINGHEADERIMP_H
#define KN_MIME_KNMIMECONTENTTRANSFERENCODINGHEADERIMP_H

/// @class KNMimeContentTransferEncodingHeaderImp
/// Header body of a Content-Transfer-Encoding field: the encoding name, case kept.

#include <mime/KNMimeHeaderImp.h>

class KNMimeHeader;

class KNMIME_EXPORT KNMimeContentTransferEncodingHeaderImp : public KNMimeHeaderImp {
public:
    KNMimeContentTransferEncodingHeaderImp() = default;
    /// A copy with the same label and encoding name.
    KNMimeContentTransferEncodingHeaderImp(const KNMimeContentTransferEncodingHeaderImp& other) = default;
    ~KNMimeContentTransferEncodingHeaderImp() override;

    /// A new header of this kind; the creator registered with the header factory.
    static KNMimeHeader make();

    /// Refuses an encoding that is not a token (an empty one included).
    KNCString getValueAsString() const override;
    void setValueFromString(const KNCString& text) override;
    KNMimeContentTransferEncodingHeaderImp* copy() const override;
    /// Encoding names compare ignoring case.
    bool compareValueTo(const KNMimeHeaderImp& other) const override;

    /// The encoding name as written.
    KNCString getEncoding() const { return encoding_; }
    /// Replaces the encoding name; it is checked to be a token when printed.
    void setEncoding(const KNCString& encoding) { encoding_ = encoding; }

private:
    KNCString encoding_;
};

#endif
