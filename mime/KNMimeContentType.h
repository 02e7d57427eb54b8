#ifndef KN_MIME_KNMIMECONTENTTYPE_H
#define KN_MIME_KNMIMECONTENTTYPE_H

/// @class KNMimeContentType
/// The value of a Content-Type header: a shared handle over media type, subtype and
/// parameters, read from and printed as `type/subtype; name="value"`.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>
#include <foundation/KNHandleBase.h>
#include <mime/KNMimeContentTypeImp.h>
#include <mime/KNMimeParameterList.h>

class KNMIME_EXPORT KNMimeContentType : public KNHandleBase,
                                        public KNMimeParameterAccess<KNMimeContentType> {
public:
    /// Empty media type and subtype, no parameters.
    KNMimeContentType();
    /// The media type `mediaType`/`subType` with a copy of `parameters`.
    KNMimeContentType(const KNCString& mediaType, const KNCString& subType,
                      const KNMimeParameterList& parameters);
    /// Adopts the body; null gives an empty handle.
    explicit KNMimeContentType(KNMimeContentTypeImp* body);
    /// Copies and moves share the body; a moved-from handle is empty.
    ///@{
    KNMimeContentType(const KNMimeContentType& other) = default;
    KNMimeContentType& operator=(const KNMimeContentType& other) = default;
    KNMimeContentType(KNMimeContentType&&) noexcept = default;
    KNMimeContentType& operator=(KNMimeContentType&&) noexcept = default;
    ///@}
    virtual ~KNMimeContentType();

    /// Whether this class accepts the pair; fromString consults it. Any pair here.
    virtual bool checkType(const KNCString& mediaType, const KNCString& subType) const;

    /// The body; KNTHRInvalidPointer for an empty handle.
    KNMimeContentTypeImp* body() const { return rootBody<KNMimeContentTypeImp>(); }
    /// An independent deep copy.
    KNMimeContentType copy() const;

    /// The media type ("text", "multipart", ...) as written.
    KNCString getMediaType() const;
    /// The subtype ("plain", "mixed", ...) as written.
    KNCString getSubType() const;

    /// Parses type/subtype and parameters, checks the pair with checkType and rebinds this
    /// handle to a new body; on any error the handle is left as it was. Handles that shared
    /// the old body keep the old value.
    void fromString(const KNCString& text);
    /// `type/subtype` followed by the parameters; a media type or subtype that is not a
    /// token is refused with KNMimeError (INVALID_TOKEN).
    KNCString asString() const;

protected:
    /// Throws KNMimeError (INVALID_TYPE_CONVERSION) naming this handle's type/subtype.
    [[noreturn]] void throwInvalidConversion() const;

private:
    friend class KNMimeParameterAccess<KNMimeContentType>;
    KNMimeParameterList& parameterList() const { return body()->parameterList(); }
};

/// Value equality of the bodies: media types and subtypes ignoring case, parameter lists
/// as lists compare.
/// @relates KNMimeContentType
KNMIME_EXPORT bool operator==(const KNMimeContentType& a, const KNMimeContentType& b);
/// The negation of operator==.
/// @relates KNMimeContentType
KNMIME_EXPORT bool operator!=(const KNMimeContentType& a, const KNMimeContentType& b);

#endif
