#ifndef KN_MIME_KNMIMECONTENTLOCATIONHEADER_H
#define KN_MIME_KNMIMECONTENTLOCATIONHEADER_H

/// @class KNMimeContentLocationHeader
/// The Content-Location header: the URI a part is known by.

#include <mime/KNMimeStructuredHeaderImp.h>
#include <mime/KNMimeTypedHeader.h>

class KNMIME_EXPORT KNMimeContentLocationHeader
    : public KNMimeTypedHeader<KNMimeContentLocationHeader, KNMimeStructuredHeaderImp> {
public:
    using KNMimeTypedHeader::KNMimeTypedHeader;
    explicit KNMimeContentLocationHeader(const KNCString& uri);

    static const KNCString Label; ///< "Content-Location"

    KNCString getURI() const;
    void setURI(const KNCString& uri);
};

#endif
