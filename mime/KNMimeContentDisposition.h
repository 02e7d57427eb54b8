#ifndef KN_MIME_KNMIMECONTENTDISPOSITION_H
#define KN_MIME_KNMIMECONTENTDISPOSITION_H

// The value of a Content-Disposition header: a shared handle over a disposition type
// (inline, attachment, ...) and its parameters, of which filename has its own accessors.

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
    static constexpr KNCStringConstant Filename{"filename"};

    // Empty type, no parameters.
    KNMimeContentDisposition();
    // The type, and a filename parameter unless `filename` is empty.
    KNMimeContentDisposition(const KNCString& type, const KNCString& filename);
    // Adopts the body; null gives an empty handle.
    explicit KNMimeContentDisposition(KNMimeContentDispositionImp* body);
    KNMimeContentDisposition(const KNMimeContentDisposition& other) = default;
    KNMimeContentDisposition& operator=(const KNMimeContentDisposition& other) = default;
    KNMimeContentDisposition(KNMimeContentDisposition&&) noexcept = default;
    KNMimeContentDisposition& operator=(KNMimeContentDisposition&&) noexcept = default;
    virtual ~KNMimeContentDisposition();

    KNMimeContentDispositionImp* body() const { return rootBody<KNMimeContentDispositionImp>(); }
    // An independent deep copy.
    KNMimeContentDisposition copy() const;

    KNCString getType() const;
    void setType(const KNCString& type);
    KNCString getFilename() const;
    void setFilename(const KNCString& filename);

    // Parses into the shared body: every handle sharing it sees the new value. On
    // KNMimeParseError nothing changes.
    void fromString(const KNCString& text);
    KNCString asString() const;

private:
    friend class KNMimeParameterAccess<KNMimeContentDisposition>;
    KNMimeParameterList& parameterList() const { return body()->parameterList(); }
};

KNMIME_EXPORT bool operator==(const KNMimeContentDisposition& a, const KNMimeContentDisposition& b);
KNMIME_EXPORT bool operator!=(const KNMimeContentDisposition& a, const KNMimeContentDisposition& b);

#endif
