#ifndef KN_MIME_KNMIMEHEADER_H
#define KN_MIME_KNMIMEHEADER_H

/// @class KNMimeHeader
/// One header field of a MIME entity (a label and a value), as a handle over a shared body
/// whose class the header factory chooses from the label.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>
#include <foundation/KNHandleBase.h>

class KNMimeHeaderImp;

class KNMIME_EXPORT KNMimeHeader : public KNHandleBase {
public:
    /// A header with an empty label and the default (unstructured) body.
    KNMimeHeader();
    /// A header whose body class the factory picks for `label` (ignoring case); the label
    /// keeps the caller's spelling.
    explicit KNMimeHeader(const KNCString& label);
    /// Adopts a newly made body; null gives an empty handle.
    explicit KNMimeHeader(KNMimeHeaderImp* body);
    /// Copies and moves share the body; a moved-from handle is empty.
    ///@{
    KNMimeHeader(const KNMimeHeader& other) = default;
    KNMimeHeader& operator=(const KNMimeHeader& other) = default;
    KNMimeHeader(KNMimeHeader&&) noexcept = default;
    KNMimeHeader& operator=(KNMimeHeader&&) noexcept = default;
    ///@}
    virtual ~KNMimeHeader();

    /// The label as written (compare it ignoring case).
    KNCString getLabel() const;
    /// "label: value", folded at 78 columns, without a final line end.
    /// A value holding a CR or LF outside a fold is refused (INVALID_VALUE).
    KNCString asString() const;
    /// Parses one (possibly folded) header line; the handle gets a new body from the factory.
    void fromString(const KNCString& text);
    /// An independent deep copy.
    KNMimeHeader copy() const;
    /// Whether this kind of handle may carry a header with `label`; always true here.
    virtual bool checkLabel(const KNCString& label) const;

    /// The body; KNTHRInvalidPointer for an empty handle.
    KNMimeHeaderImp* body() const;

protected:
    /// Refuses a conversion into a typed handle: INVALID_HEADER_CONVERSION naming `label`.
    [[noreturn]] static void throwConversionRefused(const KNCString& label);
};

/// Equal when the labels match ignoring case and the bodies find their values equal.
/// @relates KNMimeHeader
KNMIME_EXPORT bool operator==(const KNMimeHeader& a, const KNMimeHeader& b);
/// The negation of operator==.
/// @relates KNMimeHeader
KNMIME_EXPORT bool operator!=(const KNMimeHeader& a, const KNMimeHeader& b);

#endif
