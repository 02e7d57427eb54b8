#ifndef KN_MIME_KNMIMECONTENTDISPOSITION_H
#define KN_MIME_KNMIMECONTENTDISPOSITION_H

/// @class KNMimeContentDisposition
/// The value of a Content-Disposition header: a shared handle over a disposition type
/// (inline, attachment, ...) and its parameters, of which filename has its own accessors.

#include <foundation/KNCString.h>
#include <foundation/KNCStringConstant.h>
#include <foundation/KNExport.h>
#include <foundation/KNHandleBase.h>
#include <mime/KNMimeContentDispositionImp.h>
#include <mime/KNMimeParameterList.h>

class KNMIME_EXPORT KNMimeContentDisposition
    : public KNHandleBase,
      public KNMimeParameterAccess<KNMimeContentDisposition> {
public:
    static constexpr KNCStringConstant Filename{"filename"}; ///< "filename"

    /// Empty type, no parameters.
    KNMimeContentDisposition();
    /// The type, and a filename parameter unless `filename` is empty.
    KNMimeContentDisposition(const KNCString& type, const KNCString& filename);
    /// Adopts the body; null gives an empty handle.
    explicit KNMimeContentDisposition(KNMimeContentDispositionImp* body);
    /// Copies and moves share the body; a moved-from handle is empty.
    ///@{
    KNMimeContentDisposition(const KNMimeContentDisposition& other) = default;
    KNMimeContentDisposition& operator=(const KNMimeContentDisposition& other) = default;
    KNMimeContentDisposition(KNMimeContentDisposition&&) noexcept = default;
    KNMimeContentDisposition& operator=(KNMimeContentDisposition&&) noexcept = default;
    ///@}
    virtual ~KNMimeContentDisposition();

    /// The body; KNTHRInvalidPointer for an empty handle.
    KNMimeContentDispositionImp* body() const { return rootBody<KNMimeContentDispositionImp>(); }
    /// An independent deep copy.
    KNMimeContentDisposition copy() const;

    /// The disposition type as written ("inline", "attachment", ...).
    KNCString getType() const;
    /// Replaces the disposition type; it is checked to be a token when printed.
    void setType(const KNCString& type);
    /// The value of the filename parameter, empty when there is none.
    KNCString getFilename() const;
    /// Sets the filename parameter; an empty name removes it.
    void setFilename(const KNCString& filename);

    /// Parses into the shared body: every handle sharing it sees the new value. On
    /// KNMimeParseError nothing changes.
    void fromString(const KNCString& text);
    /// The type followed by the parameters, e.g. `attachment; filename="a.pdf"`; a type
    /// that is not a token is refused with KNMimeError (INVALID_TOKEN).
    KNCString asString() const;

private:
    friend class KNMimeParameterAccess<KNMimeContentDisposition>;
    KNMimeParameterList& parameterList() const { return body()->parameterList(); }
};

/// Value equality of the bodies: types ignoring case, parameter lists as lists compare.
/// @relates KNMimeContentDisposition
KNMIME_EXPORT bool operator==(const KNMimeContentDisposition& a, const KNMimeContentDisposition& b);
/// The negation of operator==.
/// @relates KNMimeContentDisposition
KNMIME_EXPORT bool operator!=(const KNMimeContentDisposition& a, const KNMimeContentDisposition& b);

#endif
