#include <mime/KNMimeContentTransferEncodingHeader.h>

KNMimeContentTransferEncodingHeader::KNMimeContentTransferEncodingHeader(const KNCString& encoding)
{
    setEncoding(encoding);
}

KNCString KNMimeContentTransferEncodingHeader::getEncoding() const
{
    return body()->getEncoding();
}

void KNMimeContentTransferEncodingHeader::setEncoding(const KNCString& encoding)
{
    body()->setEncoding(encoding);
}
