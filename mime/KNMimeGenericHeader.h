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

    /// The value as written: unfolded and trimmed, encoded words not decoded.
    KNCString getValue() const;
    /// Replaces the value; it is folded when printed.
    void setValue(const KNCString& value);

    /// The unstructured body; KNTHRInvalidPointer when the header has none or another kind.
    KNMimeUnstructuredHeaderImp* body() const;
};

#endif
