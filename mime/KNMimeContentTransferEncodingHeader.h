#ifndef KN_MIME_KNMIMECONTENTTRANSFERENCODINGHEADER_H
#define KN_MIME_KNMIMECONTENTTRANSFERENCODINGHEADER_H

/// @class KNMimeContentTransferEncodingHeader
/// The Content-Transfer-Encoding header: its value is the name of the body's encoding.

#include <foundation/KNCStringConstant.h>
#include <mime/KNMimeContentTransferEncodingHeaderImp.h>
#include <mime/KNMimeTypedHeader.h>

class KNMIME_EXPORT KNMimeContentTransferEncodingHeader
    : public KNMimeTypedHeader<KNMimeContentTransferEncodingHeader, KNMimeContentTransferEncodingHeaderImp> {
public:
    using KNMimeTypedHeader::KNMimeTypedHeader;
    /// A Content-Transfer-Encoding header naming `encoding` (e.g. KNMimeUtils::Base64).
    explicit KNMimeContentTransferEncodingHeader(const KNCString& encoding);

    static constexpr KNCStringConstant Label{"Content-Transfer-Encoding"}; ///< "Content-Transfer-Encoding"

    /// The encoding name as written; compare it ignoring case.
    KNCString getEncoding() const;
    /// Stored as given; checked only when printed.
    void setEncoding(const KNCString& encoding);
};

#endif
