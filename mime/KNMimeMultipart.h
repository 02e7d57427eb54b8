#ifndef KN_MIME_KNMIMEMULTIPART_H
#define KN_MIME_KNMIMEMULTIPART_H

/// @class KNMimeMultipart
/// The typed handle of a multipart part: a preamble and ordered nested parts, printed between
/// delimiter lines made from the boundary of the part's own Content-Type header.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>
#include <mime/KNMimeHeader.h>
#include <mime/KNMimeMultipartImp.h>
#include <mime/KNMimePart.h>

#include <cstddef>

class KNMimeMultipartType;

/// A KNMimeMultipart handle always has a multipart body: the conversion from a part checks
/// the body's kind, and the inherited fromString refuses a text whose first Content-Type is
/// not multipart (INVALID_MULTIPART_CONVERSION) before the handle changes.
class KNMIME_EXPORT KNMimeMultipart : public KNMimePart {
public:
    /// No headers, no parts: printable once a multipart Content-Type with a boundary is added.
    KNMimeMultipart();
    /// One Content-Type header built from `type`, so the boundary is the one `type` carries.
    explicit KNMimeMultipart(const KNMimeMultipartType& type);
    /// Shares the body of `part` when it is a multipart body (headers play no part);
    /// otherwise KNMimeError INVALID_MULTIPART_CONVERSION.
    KNMimeMultipart(const KNMimePart& part);
    /// Adopts the body; null gives an empty handle.
    explicit KNMimeMultipart(KNMimeMultipartImp* body);

    /// The multipart body; KNTHRInvalidPointer when the handle is empty.
    KNMimeMultipartImp* body() const { return bodyAs<KNMimeMultipartImp>(); }

    /// The text before the first delimiter line, without its line end.
    KNCString getPreamble() const;
    /// Stored verbatim, unchecked.
    void setPreamble(const KNCString& preamble);

    /// The number of nested parts.
    std::size_t getPartCount() const;
    /// Part i, sharing its body: changing it changes this multipart.
    KNMimePart getPart(std::size_t i) const;
    /// Inserting this multipart into itself or into a part nested in it throws CYCLIC_PART.
    void insertPart(const KNMimePart& part);
    /// The new part gets index i; i above the count throws KNBoundsErr naming i - 1.
    void insertPartAt(std::size_t i, const KNMimePart& part);
    /// Removes part i; KNBoundsErr when i is not below the count.
    void removePartAt(std::size_t i);
    /// First part index not below `start` with a header equal to `header` among its own
    /// headers, or npos.
    std::size_t findPart(const KNMimeHeader& header, std::size_t start) const;
};

#endif
