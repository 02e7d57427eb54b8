#include <mime/KNMimeContentDispositionHeader.h>

KNMimeContentDispositionHeader::KNMimeContentDispositionHeader(const KNMimeContentDisposition& disposition)
{
    setContentDisposition(disposition);
}

KNMimeContentDisposition KNMimeContentDispositionHeader::getContentDisposition() const
{
    return body()->getContentDisposition();
}

void KNMimeContentDispositionHeader::setContentDisposition(const KNMimeContentDisposition& disposition)
{
    body()->setContentDisposition(disposition);
}
