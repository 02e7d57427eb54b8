#ifndef KN_MIME_KNMIMECONTENTLOCATIONHEADER_H
#define KN_MIME_KNMIMECONTENTLOCATIONHEADER_H

// The Content-Location header: the URI a part is known by.

#include <foundation/KNCStringConstant.h>
#include <mime/KNMimeStructuredHeaderImp.h>
#include <mime/KNMimeTypedHeader.h>

class KNMIME_EXPORT KNMimeContentLocationHeader
    : public KNMimeTypedHeader<KNMimeContentLocationHeader, KNMimeStructuredHeaderImp> {
public:
    using KNMimeTypedHeader::KNMimeTypedHeader;
    explicit KNMimeContentLocationHeader(const KNCString& uri);

    static constexpr KNCStringConstant Label{"Content-Location"};

    KNCString getURI() const;
    void setURI(const KNCString& uri);
};

#endif
