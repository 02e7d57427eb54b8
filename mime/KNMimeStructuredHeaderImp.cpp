#include <mime/KNMimeStructuredHeaderImp.h>

#include <mime/KNMimeHeader.h>
#include <mime/internal/KNMimeScan.h>

KNMimeStructuredHeaderImp::~KNMimeStructuredHeaderImp() = default;

KNMimeHeader KNMimeStructuredHeaderImp::make()
{
    return KNMimeHeader(new KNMimeStructuredHeaderImp);
}

KNCString KNMimeStructuredHeaderImp::getValueAsString() const
{
    return value_;
}

void KNMimeStructuredHeaderImp::setValueFromString(const KNCString& text)
{
    value_ = KNMimeScan::cleanToken(text, false);
}

void KNMimeStructuredHeaderImp::appendValueTo(KNCString& out) const
{
    out += value_;
}

KNMimeStructuredHeaderImp* KNMimeStructuredHeaderImp::copy() const
{
    return new KNMimeStructuredHeaderImp(*this);
}
