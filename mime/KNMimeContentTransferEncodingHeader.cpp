#include <mime/KNMimeContentTransferEncodingHeader.h>

const KNCString KNMimeContentTransferEncodingHeader::Label = "Content-Transfer-Encoding";

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
