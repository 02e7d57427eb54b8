#ifndef KN_MIME_KNMIMECONTENTDISPOSITIONHEADER_H
#define KN_MIME_KNMIMECONTENTDISPOSITIONHEADER_H

/// @class KNMimeContentDispositionHeader
/// The Content-Disposition header: its value is a disposition type with parameters.

#include <foundation/KNCStringConstant.h>
#include <mime/KNMimeContentDisposition.h>
#include <mime/KNMimeContentDispositionHeaderImp.h>
#include <mime/KNMimeTypedHeader.h>

class KNMIME_EXPORT KNMimeContentDispositionHeader
    : public KNMimeTypedHeader<KNMimeContentDispositionHeader, KNMimeContentDispositionHeaderImp> {
public:
    using KNMimeTypedHeader::KNMimeTypedHeader;
    /// A Content-Disposition header holding `disposition` (shared, not copied).
    explicit KNMimeContentDispositionHeader(const KNMimeContentDisposition& disposition);

    static constexpr KNCStringConstant Label{"Content-Disposition"}; ///< "Content-Disposition"

    /// The held disposition, shared: changing it changes this header.
    KNMimeContentDisposition getContentDisposition() const;
    /// Makes the header hold `disposition` (shared, not copied).
    void setContentDisposition(const KNMimeContentDisposition& disposition);
};

#endif
