#include <mime/KNMimeContentTransferEncodingHeaderImp.h>

#include <foundation/KNMessage.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeHeader.h>
#include <mime/KNMimeMessages.h>
#include <mime/internal/KNMimeScan.h>

KNMimeContentTransferEncodingHeaderImp::~KNMimeContentTransferEncodingHeaderImp() = default;

KNMimeHeader KNMimeContentTransferEncodingHeaderImp::make()
{
    return KNMimeHeader(new KNMimeContentTransferEncodingHeaderImp);
}

// The name is checked when printed, not when read or set: a header read from a message
// keeps whatever it said.
KNCString KNMimeContentTransferEncodingHeaderImp::getValueAsString() const
{
    if (!KNMimeScan::isToken(encoding_))
        KNThrow(KNMimeError(KNMessage(knmime_INVALID_TOKEN(), encoding_)));
    return encoding_;
}

void KNMimeContentTransferEncodingHeaderImp::setValueFromString(const KNCString& text)
{
    encoding_ = KNMimeScan::cleanToken(text, false);
}

KNMimeContentTransferEncodingHeaderImp* KNMimeContentTransferEncodingHeaderImp::copy() const
{
    return new KNMimeContentTransferEncodingHeaderImp(*this);
}

bool KNMimeContentTransferEncodingHeaderImp::compareValueTo(const KNMimeHeaderImp& other) const
{
    return compareAs<KNMimeContentTransferEncodingHeaderImp>(other, [](const KNMimeContentTransferEncodingHeaderImp& a,
                                                                         const KNMimeContentTransferEncodingHeaderImp& b) {
        return knEqualsIgnoreCase(a.encoding_, b.encoding_);
    });
}
