#ifndef KN_MIME_KNMIMECONTENTTYPEHEADERIMP_H
#define KN_MIME_KNMIMECONTENTTYPEHEADERIMP_H

/// @class KNMimeContentTypeHeaderImp
/// Header body of a Content-Type field: holds the media type, text/plain until told otherwise.

#include <mime/KNMimeContentType.h>
#include <mime/KNMimeHeaderImp.h>

class KNMimeHeader;

class KNMIME_EXPORT KNMimeContentTypeHeaderImp : public KNMimeHeaderImp {
public:
    /// Each body starts with a content type of its own, so that changing one header's
    /// parameters never shows through another header.
    KNMimeContentTypeHeaderImp();
    /// Copies the label and deep-copies the content type.
    KNMimeContentTypeHeaderImp(const KNMimeContentTypeHeaderImp& other);
    ~KNMimeContentTypeHeaderImp() override;

    /// A new header of this kind; the creator registered with the header factory.
    static KNMimeHeader make();

    KNCString getValueAsString() const override;
    void appendValueTo(KNCString& out) const override;
    void setValueFromString(const KNCString& text) override;
    KNMimeContentTypeHeaderImp* copy() const override;
    bool compareValueTo(const KNMimeHeaderImp& other) const override;

    /// The held content type (a handle sharing it, not a copy).
    KNMimeContentType getContentType() const { return contentType_; }
    /// Holds `contentType` from now on (shared, not copied).
    void setContentType(const KNMimeContentType& contentType) { contentType_ = contentType; }

private:
    KNMimeContentType contentType_;
};

#endif
