#ifndef KN_MIME_KNMIMECONTENTTYPEIMP_H
#define KN_MIME_KNMIMECONTENTTYPEIMP_H

/// @class KNMimeContentTypeImp
/// The shared body of a content type: media type, subtype and parameter list.

#include <foundation/KNBodyBase.h>
#include <foundation/KNCString.h>
#include <foundation/KNExport.h>
#include <mime/KNMimeParameterList.h>

class KNMIME_EXPORT KNMimeContentTypeImp : public KNBodyBase,
                                           public KNMimeParameterAccess<KNMimeContentTypeImp> {
public:
    KNMimeContentTypeImp();
    /// The media type `mediaType`/`subType` with `parameters`.
    KNMimeContentTypeImp(KNCString mediaType, KNCString subType, KNMimeParameterList parameters);
    ~KNMimeContentTypeImp() override;

    /// type/subtype followed by the parameters; KNMimeError (INVALID_TOKEN) when the media
    /// type, the subtype or a parameter name is not a token.
    virtual KNCString asString() const;
    /// Appends what this class's asString() gives to `out`: for printers that write into
    /// one buffer. A subclass that prints otherwise is printed through its asString().
    void appendTo(KNCString& out) const;
    /// A new, unreferenced body holding a member-wise copy.
    virtual KNMimeContentTypeImp* copy() const;

    /// The media type as written.
    const KNCString& getMediaType() const { return mediaType_; }
    /// Replaces the media type.
    void setMediaType(const KNCString& mediaType);
    /// The subtype as written.
    const KNCString& getSubType() const { return subType_; }
    /// Replaces the subtype.
    void setSubType(const KNCString& subType);

    /// The parameters, for changing them in place.
    KNMimeParameterList& parameterList() { return parameters_; }
    /// The parameters.
    const KNMimeParameterList& parameterList() const { return parameters_; }

private:
    KNCString mediaType_;
    KNCString subType_;
    KNMimeParameterList parameters_;
};

/// Media types and subtypes compare ignoring case, parameter lists as lists do.
/// @relates KNMimeContentTypeImp
KNMIME_EXPORT bool operator==(const KNMimeContentTypeImp& a, const KNMimeContentTypeImp& b);
/// The negation of operator==.
/// @relates KNMimeContentTypeImp
KNMIME_EXPORT bool operator!=(const KNMimeContentTypeImp& a, const KNMimeContentTypeImp& b);

#endif
