#ifndef KN_MIME_KNMIMEMULTIPARTRELATEDTYPE_H
#define KN_MIME_KNMIMEMULTIPARTRELATEDTYPE_H

// A multipart/related content type, with access to its type, start and start_info.

#include <foundation/KNCString.h>
#include <foundation/KNCStringConstant.h>
#include <foundation/KNExport.h>
#include <mime/KNMimeMultipartType.h>

class KNMIME_EXPORT KNMimeMultipartRelatedType : public KNMimeMultipartType {
public:
    static constexpr KNCStringConstant Related{"related"};
    static constexpr KNCStringConstant Type{"type"};
    static constexpr KNCStringConstant Start{"start"};
    static constexpr KNCStringConstant StartInfo{"start_info"};

    // multipart/related with a generated boundary.
    KNMimeMultipartRelatedType();
    // multipart/related with `boundary` (generated when empty), then type, start and
    // start_info in that order; empty values add nothing.
    KNMimeMultipartRelatedType(const KNCString& type, const KNCString& start,
                               const KNCString& startInfo, const KNCString& boundary);
    // Shares the body of `type`; KNMimeError (INVALID_TYPE_CONVERSION) unless it is
    // multipart/related.
    KNMimeMultipartRelatedType(const KNMimeContentType& type);
    explicit KNMimeMultipartRelatedType(KNMimeContentTypeImp* body);

    // True for multipart (ignoring case) with subtype "related" (ignoring case).
    bool checkType(const KNCString& mediaType, const KNCString& subType) const override;

    KNCString getType() const;
    void setType(const KNCString& type);
    KNCString getStart() const;
    void setStart(const KNCString& start);
    KNCString getStartInfo() const;
    void setStartInfo(const KNCString& startInfo);
};

#endif
