#ifndef KN_MIME_KNMIMECONTENTLOCATIONHEADER_H
#define KN_MIME_KNMIMECONTENTLOCATIONHEADER_H

/// @class KNMimeContentLocationHeader
/// The Content-Location header: the URI a part is known by.

#include <foundation/KNCStringConstant.h>
#include <mime/KNMimeStructuredHeaderImp.h>
#include <mime/KNMimeTypedHeader.h>

class KNMIME_EXPORT KNMimeContentLocationHeader
    : public KNMimeTypedHeader<KNMimeContentLocationHeader, KNMimeStructuredHeaderImp> {
public:
    using KNMimeTypedHeader::KNMimeTypedHeader;
    /// A Content-Location header with the value `uri`.
    explicit KNMimeContentLocationHeader(const KNCString& uri);

    static constexpr KNCStringConstant Label{"Content-Location"}; ///< "Content-Location"

    /// The URI as written.
    KNCString getURI() const;
    /// Replaces the URI.
    void setURI(const KNCString& uri);
};

#endif
