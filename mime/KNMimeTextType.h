#ifndef KN_MIME_KNMIMETEXTTYPE_H
#define KN_MIME_KNMIMETEXTTYPE_H

/// @class KNMimeTextType
/// A content type restricted to media type "text", with access to its charset.

#include <foundation/KNCString.h>
#include <foundation/KNCStringConstant.h>
#include <foundation/KNExport.h>
#include <mime/KNMimeContentType.h>

class KNMIME_EXPORT KNMimeTextType : public KNMimeContentType {
public:
    static constexpr KNCStringConstant Text{"text"}; ///< "text"
    static constexpr KNCStringConstant Plain{"plain"}; ///< "plain"
    static constexpr KNCStringConstant Charset{"charset"}; ///< "charset"

    /// text/plain without parameters.
    KNMimeTextType();
    /// text/`subType`, with a charset parameter unless `charset` is empty.
    KNMimeTextType(const KNCString& subType, const KNCString& charset);
    /// Shares the body of `type`; KNMimeError (INVALID_TYPE_CONVERSION) unless it is text.
    KNMimeTextType(const KNMimeContentType& type);
    /// Adopts the body; null gives an empty handle.
    explicit KNMimeTextType(KNMimeContentTypeImp* body);

    /// True for media type "text" (ignoring case), whatever the subtype.
    bool checkType(const KNCString& mediaType, const KNCString& subType) const override;

    /// The value of the charset parameter, empty when absent.
    KNCString getCharset() const;
    /// An empty value removes the charset.
    void setCharset(const KNCString& charset);
};

#endif
