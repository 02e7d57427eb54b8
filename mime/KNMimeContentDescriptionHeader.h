#ifndef KN_MIME_KNMIMECONTENTDESCRIPTIONHEADER_H
#define KN_MIME_KNMIMECONTENTDESCRIPTIONHEADER_H

/// @class KNMimeContentDescriptionHeader
/// The Content-Description header: free text describing a part, kept exactly as given.

#include <foundation/KNCStringConstant.h>
#include <mime/KNMimeTypedHeader.h>
#include <mime/KNMimeUnstructuredHeaderImp.h>

class KNMIME_EXPORT KNMimeContentDescriptionHeader
    : public KNMimeTypedHeader<KNMimeContentDescriptionHeader, KNMimeUnstructuredHeaderImp> {
public:
    using KNMimeTypedHeader::KNMimeTypedHeader;
    /// A Content-Description header with the text `description`.
    explicit KNMimeContentDescriptionHeader(const KNCString& description);

    static constexpr KNCStringConstant Label{"Content-Description"}; ///< "Content-Description"

    /// The description as written (encoded words are not decoded).
    KNCString getDescription() const;
    /// Replaces the description.
    void setDescription(const KNCString& description);
};

#endif
