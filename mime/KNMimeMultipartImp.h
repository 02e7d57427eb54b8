#ifndef KN_MIME_KNMIMEMULTIPARTIMP_H
#define KN_MIME_KNMIMEMULTIPARTIMP_H

/// @class KNMimeMultipartImp
/// The body of a multipart part: its headers, a preamble and the ordered nested parts that
/// print between boundary delimiter lines. The boundary is not stored here: each print and
/// parse reads it from the part's own Content-Type header.

#include <foundation/KNCString.h>
#include <foundation/KNCStringConstant.h>
#include <foundation/KNExport.h>
#include <foundation/KNTOrderedList.h>
#include <mime/KNMimeHeader.h>
#include <mime/KNMimePart.h>
#include <mime/KNMimePartImp.h>

#include <cstddef>

class KNMIME_EXPORT KNMimeMultipartImp : public KNMimePartImp {
public:
    static constexpr KNCStringConstant CRLF{"\r\n"}; ///< "\r\n"
    static constexpr KNCStringConstant boundaryMarker{"--"}; ///< "--"

    /// No headers, empty preamble, no parts.
    KNMimeMultipartImp() = default;
    ~KNMimeMultipartImp() override;

    /// The printed multipart body: preamble line, each part between delimiter lines, the
    /// closing delimiter. Throws MISSING_HEADER or MISSING_BOUNDARY_PARAMETER without a
    /// boundary in the Content-Type header. Printing and comparing refuse a tree nested more
    /// than 128 multipart levels deep (NESTING_TOO_DEEP), as parsing does.
    KNCString getBody() const override;
    /// Removes all parts and the preamble, then parses the text into new ones. On failure
    /// the parts parsed before the error stay. The body that is parsed counts as the first
    /// of at most 128 nested multipart levels (NESTING_TOO_DEEP beyond).
    void setBody(const KNCString& body) override;
    /// Always true.
    bool isMultipart() const override;

    bool compareTo(const KNMimePartImp& other) const override;
    /// Both whole printed entities identical (false if either cannot be printed).
    bool compareTo(const KNMimeStringPartImp& other) const override;
    /// Preambles identical and the parts equal index by index.
    bool compareTo(const KNMimeMultipartImp& other) const override;

    /// The text before the first boundary line, as stored.
    KNCString getPreamble() const { return preamble_; }
    /// Stored verbatim, unchecked.
    void setPreamble(const KNCString& preamble) { preamble_ = preamble; }

    /// The number of nested parts.
    std::size_t getPartCount() const noexcept { return parts_.size(); }
    /// Part i, sharing its body with the stored one.
    KNMimePart getPart(std::size_t i) const;
    /// A multipart cannot be inserted into itself or into a part nested in it (CYCLIC_PART,
    /// nothing changed).
    void insertPart(const KNMimePart& part);
    /// The new part gets index i; i equal to the count appends.
    void insertPartAt(std::size_t i, const KNMimePart& part);
    /// Removes part i; KNBoundsErr when i is not below the count.
    void removePartAt(std::size_t i);
    /// First part index not below `start` whose own headers hold one equal to `header`, or
    /// npos. Parts nested deeper are not searched.
    std::size_t findPart(const KNMimeHeader& header, std::size_t start) const;

protected:
    /// Appends the printed multipart body to `out`.
    void appendBodyTo(KNCString& out) const override;
    /// A guess at the length of the printed multipart body.
    std::size_t bodySizeHint() const override;

private:
    // The parser appends the parts it builds without the cycle check.
    friend class KNMimeEntityParse;

    // True when `target` is this body or nested in it at any depth.
    bool contains(const KNMimePartImp& target) const;
    // Throws CYCLIC_PART when `part` holds this body.
    void refuseCycle(const KNMimePart& part) const;

    KNCString preamble_;
    KNTOrderedList<KNMimePart> parts_;
};

#endif
