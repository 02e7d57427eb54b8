#ifndef KN_MIME_KNMIMECONTENTIDHEADER_H
#define KN_MIME_KNMIMECONTENTIDHEADER_H

/// @class KNMimeContentIdHeader
/// The Content-ID header: the identifier text of a part, angle brackets included as given.

#include <foundation/KNCStringConstant.h>
#include <mime/KNMimeStructuredHeaderImp.h>
#include <mime/KNMimeTypedHeader.h>

class KNMIME_EXPORT KNMimeContentIdHeader : public KNMimeTypedHeader<KNMimeContentIdHeader, KNMimeStructuredHeaderImp> {
public:
    using KNMimeTypedHeader::KNMimeTypedHeader;
    /// A Content-ID header with the value `id` (usually `<unique@host>`).
    explicit KNMimeContentIdHeader(const KNCString& id);

    static constexpr KNCStringConstant Label{"Content-ID"}; ///< "Content-ID"

    /// The id as written.
    KNCString getId() const;
    /// Replaces the id.
    void setId(const KNCString& id);
};

#endif
