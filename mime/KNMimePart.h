#ifndef KN_MIME_KNMIMEPART_H
#define KN_MIME_KNMIMEPART_H

/// @class KNMimePart
/// A MIME entity (a whole message or one part of a multipart): ordered headers and a body,
/// as a handle over a shared body that is either a plain string or a multipart.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>
#include <foundation/KNHandleBase.h>
#include <mime/KNMimeHeader.h>
#include <mime/KNMimePartImp.h>

#include <cstddef>

class KNMimeContentType;

class KNMIME_EXPORT KNMimePart : public KNHandleBase {
public:
    /// No headers, empty string body.
    KNMimePart();
    /// One Content-Type header built from `type`; a multipart body when its media type is
    /// "multipart" (ignoring case), a string body otherwise.
    explicit KNMimePart(const KNMimeContentType& type);
    /// Adopts the body; null gives an empty handle.
    explicit KNMimePart(KNMimePartImp* body);
    /// Copies and moves share the body; a moved-from handle is empty.
    ///@{
    KNMimePart(const KNMimePart& other) = default;
    KNMimePart& operator=(const KNMimePart& other) = default;
    KNMimePart(KNMimePart&&) noexcept = default;
    KNMimePart& operator=(KNMimePart&&) noexcept = default;
    ///@}
    virtual ~KNMimePart();

    /// The body; KNTHRInvalidPointer for an empty handle.
    KNMimePartImp* body() const { return rootBody<KNMimePartImp>(); }

    /// Headers, each followed by CRLF, an empty line, then the body; the body is printed as
    /// stored (no transfer encoding is applied).
    KNCString asString() const;
    /// Parses a complete entity (CRLF line ends only) and points this handle at the new body;
    /// the kind of body follows the first Content-Type header. Handles that shared the old
    /// body keep it, and on any error this handle is left as it was. Through a
    /// KNMimeMultipart handle a text that is not multipart is refused with
    /// INVALID_MULTIPART_CONVERSION.
    void fromString(const KNCString& text);

    /// True when the part has a multipart body (see KNMimeMultipart).
    bool isMultipart() const;
    /// The body text; for a multipart, the printed multipart body.
    KNCString getBody() const;
    /// For a string body the text is stored verbatim; a multipart body parses it into parts.
    void setBody(const KNCString& body);

    /// The number of headers.
    std::size_t getHeaderCount() const;
    /// Header i, sharing its body with the stored one; KNBoundsErr when i is not below the count.
    KNMimeHeader getHeader(std::size_t i) const;
    /// Appends `header` (shared, not copied).
    void insertHeader(const KNMimeHeader& header);
    /// The new header gets index i; i above the count throws KNBoundsErr naming i - 1.
    void insertHeaderAt(std::size_t i, const KNMimeHeader& header);
    /// Removes header i; KNBoundsErr when i is not below the count.
    void removeHeaderAt(std::size_t i);
    /// First index not below `start` with this label (ignoring case), or npos.
    std::size_t findHeader(const KNCString& label, std::size_t start) const;
    /// True when the first Content-Type header names media type "multipart"; says nothing
    /// about the kind of body this part has.
    bool hasMultipartHeader() const;
};

/// Value equality: headers in order, then the bodies. A string body and a multipart body are
/// compared through printed text, and the two orders of the operands can disagree.
/// @relates KNMimePart
KNMIME_EXPORT bool operator==(const KNMimePart& left, const KNMimePart& right);
/// The negation of operator==.
/// @relates KNMimePart
KNMIME_EXPORT bool operator!=(const KNMimePart& left, const KNMimePart& right);

#endif
