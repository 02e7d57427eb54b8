#ifndef KN_MIME_KNMIMESTRINGPARTIMP_H
#define KN_MIME_KNMIMESTRINGPARTIMP_H

/// @class KNMimeStringPartImp
/// The body of a single (non-multipart) part: its headers and a body string kept verbatim.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>
#include <mime/KNMimePartImp.h>

class KNMIME_EXPORT KNMimeStringPartImp : public KNMimePartImp {
public:
    /// No headers, empty body.
    KNMimeStringPartImp() = default;
    /// No headers, the given body (moved in, so a parser copies the text only once).
    explicit KNMimeStringPartImp(KNCString body);
    ~KNMimeStringPartImp() override;

    KNCString getBody() const override;
    /// Stores the text as given: no transfer encoding, no check.
    void setBody(const KNCString& body) override;
    /// Always false.
    bool isMultipart() const override;

    bool compareTo(const KNMimePartImp& other) const override;
    /// Both bodies identical, byte for byte.
    bool compareTo(const KNMimeStringPartImp& other) const override;
    /// This body string identical to the whole printed multipart entity (false if that
    /// cannot be printed).
    bool compareTo(const KNMimeMultipartImp& other) const override;

protected:
    /// Appends the stored body to `out`.
    void appendBodyTo(KNCString& out) const override;
    /// The length of the stored body.
    std::size_t bodySizeHint() const override;

private:
    KNCString body_;
};

#endif
