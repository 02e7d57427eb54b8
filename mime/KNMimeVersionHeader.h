#ifndef KN_MIME_KNMIMEVERSIONHEADER_H
#define KN_MIME_KNMIMEVERSIONHEADER_H

/// @class KNMimeVersionHeader
/// The MIME-Version header: a major and a minor version number.

#include <foundation/KNCStringConstant.h>
#include <mime/KNMimeTypedHeader.h>
#include <mime/KNMimeVersionHeaderImp.h>

class KNMIME_EXPORT KNMimeVersionHeader : public KNMimeTypedHeader<KNMimeVersionHeader, KNMimeVersionHeaderImp> {
public:
    using KNMimeTypedHeader::KNMimeTypedHeader;
    /// Version 1.0.
    KNMimeVersionHeader();
    /// A MIME-Version header with the value `majorVersion`.`minorVersion`.
    KNMimeVersionHeader(unsigned majorVersion, unsigned minorVersion);

    static constexpr KNCStringConstant Label{"MIME-Version"}; ///< "MIME-Version"

    /// The number before the dot.
    unsigned getMajorVersion() const;
    /// The number after the dot.
    unsigned getMinorVersion() const;
    /// Replaces the version.
    void setVersion(unsigned majorVersion, unsigned minorVersion);
};

#endif
