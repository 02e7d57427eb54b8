#ifndef KN_MIME_KNMIMEMULTIPARTTYPE_H
#define KN_MIME_KNMIMEMULTIPARTTYPE_H

// A content type restricted to media type "multipart", with access to its boundary.

#include <foundation/KNCString.h>
#include <foundation/KNCStringConstant.h>
#include <foundation/KNExport.h>
#include <mime/KNMimeContentType.h>

class KNMIME_EXPORT KNMimeMultipartType : public KNMimeContentType {
public:
    static constexpr KNCStringConstant Multipart{"multipart"};
    static constexpr KNCStringConstant Mixed{"mixed"};
    static constexpr KNCStringConstant Boundary{"boundary"};

    // multipart/mixed with a freshly generated boundary.
    KNMimeMultipartType();
    // multipart/<subType> with the given boundary, or a generated one when it is empty.
    KNMimeMultipartType(const KNCString& subType, const KNCString& boundary);
    // Shares the body of `type` as it is (no boundary is added); KNMimeError
    // (INVALID_TYPE_CONVERSION) unless it is multipart.
    KNMimeMultipartType(const KNMimeContentType& type);
    explicit KNMimeMultipartType(KNMimeContentTypeImp* body);

    // True for media type "multipart" (ignoring case), whatever the subtype.
    bool checkType(const KNCString& mediaType, const KNCString& subType) const override;

    KNCString getBoundary() const;
    // An empty value removes the boundary.
    void setBoundary(const KNCString& boundary);
};

#endif
