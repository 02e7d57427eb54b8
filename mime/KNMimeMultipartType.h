#ifndef KN_MIME_KNMIMEMULTIPARTTYPE_H
#define KN_MIME_KNMIMEMULTIPARTTYPE_H

/// @class KNMimeMultipartType
/// A content type restricted to media type "multipart", with access to its boundary.

#include <foundation/KNCString.h>
#include <foundation/KNCStringConstant.h>
#include <foundation/KNExport.h>
#include <mime/KNMimeContentType.h>

class KNMIME_EXPORT KNMimeMultipartType : public KNMimeContentType {
public:
    static constexpr KNCStringConstant Multipart{"multipart"}; ///< "multipart"
    static constexpr KNCStringConstant Mixed{"mixed"}; ///< "mixed"
    static constexpr KNCStringConstant Boundary{"boundary"}; ///< "boundary"

    /// multipart/mixed with a freshly generated boundary.
    KNMimeMultipartType();
    /// multipart/`subType` with the given boundary, or a generated one when it is empty.
    KNMimeMultipartType(const KNCString& subType, const KNCString& boundary);
    /// Shares the body of `type` as it is (no boundary is added); KNMimeError
    /// (INVALID_TYPE_CONVERSION) unless it is multipart.
    KNMimeMultipartType(const KNMimeContentType& type);
    /// Adopts the body; null gives an empty handle.
    explicit KNMimeMultipartType(KNMimeContentTypeImp* body);

    /// True for media type "multipart" (ignoring case), whatever the subtype.
    bool checkType(const KNCString& mediaType, const KNCString& subType) const override;

    /// The value of the boundary parameter, empty when absent.
    KNCString getBoundary() const;
    /// An empty value removes the boundary.
    void setBoundary(const KNCString& boundary);
};

#endif
