#ifndef KN_MIME_KNMIMECONTENTTYPEHEADER_H
#define KN_MIME_KNMIMECONTENTTYPEHEADER_H

/// @class KNMimeContentTypeHeader
/// The Content-Type header: its value is a media type with parameters.

#include <foundation/KNCStringConstant.h>
#include <mime/KNMimeContentType.h>
#include <mime/KNMimeContentTypeHeaderImp.h>
#include <mime/KNMimeTypedHeader.h>

class KNMIME_EXPORT KNMimeContentTypeHeader
    : public KNMimeTypedHeader<KNMimeContentTypeHeader, KNMimeContentTypeHeaderImp> {
public:
    using KNMimeTypedHeader::KNMimeTypedHeader;
    /// A Content-Type header holding `contentType` (shared, not copied).
    explicit KNMimeContentTypeHeader(const KNMimeContentType& contentType);

    static constexpr KNCStringConstant Label{"Content-Type"}; ///< "Content-Type"

    /// The held content type, shared: changing its parameters changes this header.
    KNMimeContentType getContentType() const;
    /// Makes the header hold `contentType` (shared, not copied).
    void setContentType(const KNMimeContentType& contentType);
};

#endif
