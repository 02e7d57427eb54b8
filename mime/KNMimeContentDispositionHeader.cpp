#include <mime/KNMimeContentDispositionHeader.h>

const KNCString KNMimeContentDispositionHeader::Label = "Content-Disposition";

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
