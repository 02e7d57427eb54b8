#ifndef KN_MIME_KNMIMEPARTIMP_H
#define KN_MIME_KNMIMEPARTIMP_H

/// @class KNMimePartImp
/// The shared body of a MIME part: the ordered header list every part has, with the body
/// text left to the two concrete kinds (a plain string, or a list of nested parts).

#include <foundation/KNBodyBase.h>
#include <foundation/KNCString.h>
#include <foundation/KNCStringConstant.h>
#include <foundation/KNExport.h>
#include <foundation/KNTOrderedList.h>
#include <mime/KNMimeHeader.h>

#include <cstddef>
#include <utility>
#include <vector>

class KNMimeStringPartImp;
class KNMimeMultipartImp;

class KNMIME_EXPORT KNMimePartImp : public KNBodyBase {
public:
    static constexpr KNCStringConstant CRLF{"\r\n"}; ///< "\r\n"

    /// A part has no deep copy: copying a body would share its headers and parts.
    KNMimePartImp(const KNMimePartImp&) = delete;
    KNMimePartImp& operator=(const KNMimePartImp&) = delete;
    ~KNMimePartImp() override;

    /// The body text: the stored string, or the printed multipart body.
    virtual KNCString getBody() const = 0;
    /// Replaces the body text: stored verbatim, or parsed into nested parts.
    virtual void setBody(const KNCString& body) = 0;
    /// True for a multipart body.
    virtual bool isMultipart() const = 0;
    /// Equality by double dispatch: the headers first, then the pair of concrete bodies.
    virtual bool compareTo(const KNMimePartImp& other) const = 0;
    /// The second step of compareTo: `other` is the concrete body of the left operand.
    ///@{
    virtual bool compareTo(const KNMimeStringPartImp& other) const = 0;
    virtual bool compareTo(const KNMimeMultipartImp& other) const = 0;
    ///@}

    /// The number of headers.
    std::size_t getHeaderCount() const noexcept { return headers_.size(); }
    /// Header i, sharing its body with the stored one.
    KNMimeHeader getHeader(std::size_t i) const;
    /// Appends `header` (shared, not copied).
    void insertHeader(const KNMimeHeader& header);
    /// Replaces every header by `headers`, taking over the list: for parsers, which collect
    /// the headers before they know which body class the entity gets.
    void adoptHeaders(std::vector<KNMimeHeader>&& headers) noexcept { headers_.assign(std::move(headers)); }
    /// The new header gets index i; i equal to the count appends.
    void insertHeaderAt(std::size_t i, const KNMimeHeader& header);
    /// Removes header i; KNBoundsErr when i is not below the count.
    void removeHeaderAt(std::size_t i);
    /// First index not below `start` whose label equals `label` ignoring case, or npos.
    std::size_t findHeader(const KNCString& label, std::size_t start) const;
    /// Same number of headers, equal index by index.
    bool compareHeaders(const KNMimePartImp& other) const;

    /// The printed entity: each header and CRLF, an empty line, then the body.
    KNCString asString() const;
    /// Appends the printed entity to `out`, so that a whole tree prints into one buffer.
    void appendTo(KNCString& out) const;
    /// A guess at the length of the printed entity, for reserving that buffer once.
    std::size_t printedSizeHint() const;

protected:
    KNMimePartImp() = default;

    /// Appends the printed body to `out`.
    virtual void appendBodyTo(KNCString& out) const = 0;
    /// A guess at the length of the printed body.
    virtual std::size_t bodySizeHint() const = 0;

private:
    KNTOrderedList<KNMimeHeader> headers_;
};

/// Value equality of two bodies (left.compareTo(right)); see compareTo for the asymmetry
/// between a string body and a multipart body.
/// @relates KNMimePartImp
KNMIME_EXPORT bool operator==(const KNMimePartImp& left, const KNMimePartImp& right);
/// The negation of operator==.
/// @relates KNMimePartImp
KNMIME_EXPORT bool operator!=(const KNMimePartImp& left, const KNMimePartImp& right);

#endif
