#ifndef KN_MIME_KNMIMEGENERICHEADER_H
#define KN_MIME_KNMIMEGENERICHEADER_H

/// @class KNMimeGenericHeader
/// A header whose label the header factory does not know, with a free-text value.

#include <foundation/KNCString.h>
#include <mime/KNMimeHeader.h>
#include <mime/KNMimeUnstructuredHeaderImp.h>

class KNMIME_EXPORT KNMimeGenericHeader : public KNMimeHeader {
public:
    /// Empty label and value: not printable until it gets a label.
    KNMimeGenericHeader();
    /// KNOWN_HEADER_TYPE when the factory knows `label`.
    KNMimeGenericHeader(const KNCString& label, const KNCString& value);
    /// Adopts a newly made body; null gives an empty handle.
    explicit KNMimeGenericHeader(KNMimeUnstructuredHeaderImp* body);
    /// Shares the body of `header`; KNOWN_HEADER_TYPE when the factory knows its label.
    KNMimeGenericHeader(const KNMimeHeader& header);

    /// True for every label the factory does not know (the empty one included).
    bool checkLabel(const KNCString& label) const override;

    KNCString getValue() const;
    void setValue(const KNCString& value);

    KNMimeUnstructuredHeaderImp* body() const;
};

#endif
