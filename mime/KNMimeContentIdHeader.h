#ifndef KN_MIME_KNMIMECONTENTIDHEADER_H
#define KN_MIME_KNMIMECONTENTIDHEADER_H

// The Content-ID header: the identifier text of a part, angle brackets included as given.

#include <foundation/KNCStringConstant.h>
#include <mime/KNMimeStructuredHeaderImp.h>
#include <mime/KNMimeTypedHeader.h>

class KNMIME_EXPORT KNMimeContentIdHeader : public KNMimeTypedHeader<KNMimeContentIdHeader, KNMimeStructuredHeaderImp> {
public:
    using KNMimeTypedHeader::KNMimeTypedHeader;
    explicit KNMimeContentIdHeader(const KNCString& id);

    static constexpr KNCStringConstant Label{"Content-ID"};

    KNCString getId() const;
    void setId(const KNCString& id);
};

#endif
