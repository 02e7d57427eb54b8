#include <mime/KNMimeGenericHeader.h>

#include <foundation/KNMessage.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeHeaderFactory.h>
#include <mime/KNMimeMessages.h>

namespace {

bool isKnownLabel(const KNCString& label)
{
    return KNMimeHeaderFactory::instance()->contains(label);
}

// Known labels belong to their typed headers. The refusal here is KNOWN_HEADER_TYPE,
// while fromString refuses the same labels with INVALID_HEADER_CONVERSION; both texts
// are established and kept.
const KNCString& unknownLabel(const KNCString& label)
{
    if (isKnownLabel(label))
        KNThrow(KNMimeError(KNMessage(knmime_KNOWN_HEADER_TYPE(), label)));
    return label;
}

const KNMimeHeader& unknownHeader(const KNMimeHeader& header)
{
    unknownLabel(header.getLabel());
    return header;
}

} // namespace

KNMimeGenericHeader::KNMimeGenericHeader() = default;

// For a label the factory does not know, KNMimeHeader(label) is the default creator's body
// with that label: exactly a default header given the label afterwards.
KNMimeGenericHeader::KNMimeGenericHeader(const KNCString& label, const KNCString& value)
    : KNMimeHeader(unknownLabel(label))
{
    setValue(value);
}

KNMimeGenericHeader::KNMimeGenericHeader(KNMimeUnstructuredHeaderImp* body) : KNMimeHeader(body) {}

KNMimeGenericHeader::KNMimeGenericHeader(const KNMimeHeader& header) : KNMimeHeader(unknownHeader(header)) {}

bool KNMimeGenericHeader::checkLabel(const KNCString& label) const
{
    return !isKnownLabel(label);
}

KNCString KNMimeGenericHeader::getValue() const
{
    return body()->getValue();
}

void KNMimeGenericHeader::setValue(const KNCString& value)
{
    body()->setValue(value);
}

KNMimeUnstructuredHeaderImp* KNMimeGenericHeader::body() const
{
    return bodyAs<KNMimeUnstructuredHeaderImp>();
}
