#ifndef KN_MIME_KNMIMECONTENTDISPOSITIONIMP_H
#define KN_MIME_KNMIMECONTENTDISPOSITIONIMP_H

/// @class KNMimeContentDispositionImp
/// The shared body of a content disposition: disposition type and parameter list.

#include <foundation/KNBodyBase.h>
#include <foundation/KNCString.h>
#include <foundation/KNExport.h>
#include <mime/KNMimeParameterList.h>

class KNMIME_EXPORT KNMimeContentDispositionImp
    : public KNBodyBase,
      public KNMimeParameterAccess<KNMimeContentDispositionImp> {
public:
    KNMimeContentDispositionImp();
    /// The type, and a filename parameter unless `filename` is empty.
    KNMimeContentDispositionImp(const KNCString& type, const KNCString& filename);
    ~KNMimeContentDispositionImp() override;

    /// A new, unreferenced body holding a member-wise copy.
    KNMimeContentDispositionImp* copy() const;

    /// The disposition type as written.
    KNCString getType() const;
    /// Replaces the disposition type.
    void setType(const KNCString& type);
    /// The value of the filename parameter, empty when there is none.
    KNCString getFilename() const;
    /// Replaces the first filename parameter by one appended at the end; empty removes it.
    void setFilename(const KNCString& filename);

    /// Parses `type; name="value"...` into this body; a missing ';' or an empty type is
    /// accepted. On KNMimeParseError the body is left as it was.
    void fromString(const KNCString& text);
    /// KNMimeError (INVALID_TOKEN) when the type or a parameter name is not a token.
    KNCString asString() const;
    /// Appends asString() to `out`, for printers that write into one buffer.
    void appendTo(KNCString& out) const;

    /// The parameters, for changing them in place.
    KNMimeParameterList& parameterList() { return parameters_; }
    /// The parameters.
    const KNMimeParameterList& parameterList() const { return parameters_; }

private:
    KNCString type_;
    KNMimeParameterList parameters_;
};

/// Types compare ignoring case, parameter lists as lists do.
/// @relates KNMimeContentDispositionImp
KNMIME_EXPORT bool operator==(const KNMimeContentDispositionImp& a, const KNMimeContentDispositionImp& b);
/// The negation of operator==.
/// @relates KNMimeContentDispositionImp
KNMIME_EXPORT bool operator!=(const KNMimeContentDispositionImp& a, const KNMimeContentDispositionImp& b);

#endif
