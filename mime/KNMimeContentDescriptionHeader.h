#ifndef KN_MIME_KNMIMECONTENTDESCRIPTIONHEADER_H
#define KN_MIME_KNMIMECONTENTDESCRIPTIONHEADER_H

// The Content-Description header: free text describing a part, kept exactly as given.

#include <foundation/KNCStringConstant.h>
#include <mime/KNMimeTypedHeader.h>
#include <mime/KNMimeUnstructuredHeaderImp.h>

class KNMIME_EXPORT KNMimeContentDescriptionHeader
    : public KNMimeTypedHeader<KNMimeContentDescriptionHeader, KNMimeUnstructuredHeaderImp> {
public:
    using KNMimeTypedHeader::KNMimeTypedHeader;
    explicit KNMimeContentDescriptionHeader(const KNCString& description);

    static constexpr KNCStringConstant Label{"Content-Description"};

    KNCString getDescription() const;
    void setDescription(const KNCString& description);
};

#endif
