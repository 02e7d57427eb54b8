#ifndef KN_MIME_KNMIMEVERSIONHEADER_H
#define KN_MIME_KNMIMEVERSIONHEADER_H

// The MIME-Version header: a major and a minor version number.

#include <foundation/KNCStringConstant.h>
#include <mime/KNMimeTypedHeader.h>
#include <mime/KNMimeVersionHeaderImp.h>

class KNMIME_EXPORT KNMimeVersionHeader : public KNMimeTypedHeader<KNMimeVersionHeader, KNMimeVersionHeaderImp> {
public:
    using KNMimeTypedHeader::KNMimeTypedHeader;
    // Version 1.0.
    KNMimeVersionHeader();
    KNMimeVersionHeader(unsigned majorVersion, unsigned minorVersion);

    static constexpr KNCStringConstant Label{"MIME-Version"};

    unsigned getMajorVersion() const;
    unsigned getMinorVersion() const;
    void setVersion(unsigned majorVersion, unsigned minorVersion);
};

#endif
