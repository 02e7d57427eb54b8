#ifndef KN_MIME_KNMIMEMULTIPARTRELATEDTYPE_H
#define KN_MIME_KNMIMEMULTIPARTRELATEDTYPE_H

/// @class KNMimeMultipartRelatedType
/// A multipart/related content type, with access to its type, start and start_info.

#include <foundation/KNCString.h>
#include <foundation/KNCStringConstant.h>
#include <foundation/KNExport.h>
#include <mime/KNMimeMultipartType.h>

class KNMIME_EXPORT KNMimeMultipartRelatedType : public KNMimeMultipartType {
public:
    static constexpr KNCStringConstant Related{"related"}; ///< "related"
    static constexpr KNCStringConstant Type{"type"}; ///< "type"
    static constexpr KNCStringConstant Start{"start"}; ///< "start"
    static constexpr KNCStringConstant StartInfo{"start_info"}; ///< "start_info"

    /// multipart/related with a generated boundary.
    KNMimeMultipartRelatedType();
    /// multipart/related with `boundary` (generated when empty), then type, start and
    /// start_info in that order; empty values add nothing.
    KNMimeMultipartRelatedType(const KNCString& type, const KNCString& start,
                               const KNCString& startInfo, const KNCString& boundary);
    /// Shares the body of `type`; KNMimeError (INVALID_TYPE_CONVERSION) unless it is
    /// multipart/related.
    KNMimeMultipartRelatedType(const KNMimeContentType& type);
    /// Adopts the body; null gives an empty handle.
    explicit KNMimeMultipartRelatedType(KNMimeContentTypeImp* body);

    /// True for multipart (ignoring case) with subtype "related" (ignoring case).
    bool checkType(const KNCString& mediaType, const KNCString& subType) const override;

    /// The value of the type parameter (the media type of the root part), empty when absent.
    KNCString getType() const;
    /// Sets the type parameter; an empty value removes it.
    void setType(const KNCString& type);
    /// The value of the start parameter (the Content-ID of the root part), empty when absent.
    KNCString getStart() const;
    /// Sets the start parameter; an empty value removes it.
    void setStart(const KNCString& start);
    /// The value of the start_info parameter, empty when absent.
    KNCString getStartInfo() const;
    /// Sets the start_info parameter; an empty value removes it.
    void setStartInfo(const KNCString& startInfo);
};

#endif
