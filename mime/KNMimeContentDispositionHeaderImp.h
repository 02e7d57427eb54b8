#ifndef KN_MIME_KNMIMECONTENTDISPOSITIONHEADERIMP_H
#define KN_MIME_KNMIMECONTENTDISPOSITIONHEADERIMP_H

/// @class KNMimeContentDispositionHeaderImp
/// Header body of a Content-Disposition field: holds the disposition and its parameters.

#include <mime/KNMimeContentDisposition.h>
#include <mime/KNMimeHeaderImp.h>

class KNMimeHeader;

class KNMIME_EXPORT KNMimeContentDispositionHeaderImp : public KNMimeHeaderImp {
public:
    KNMimeContentDispositionHeaderImp() = default;
    /// Copies the label and deep-copies the disposition.
    KNMimeContentDispositionHeaderImp(const KNMimeContentDispositionHeaderImp& other);
    ~KNMimeContentDispositionHeaderImp() override;

    /// A new header of this kind; the creator registered with the header factory.
    static KNMimeHeader make();

    KNCString getValueAsString() const override;
    void appendValueTo(KNCString& out) const override;
    void setValueFromString(const KNCString& text) override;
    KNMimeContentDispositionHeaderImp* copy() const override;
    bool compareValueTo(const KNMimeHeaderImp& other) const override;

    /// The held disposition (a handle sharing it, not a copy).
    KNMimeContentDisposition getContentDisposition() const { return disposition_; }
    /// Holds `disposition` from now on (shared, not copied).
    void setContentDisposition(const KNMimeContentDisposition& disposition) { disposition_ = disposition; }

private:
    KNMimeContentDisposition disposition_;
};

#endif
