#include <mime/KNMimeContentTypeHeader.h>

const KNCString KNMimeContentTypeHeader::Label = "Content-Type";

KNMimeContentTypeHeader::KNMimeContentTypeHeader(const KNMimeContentType& contentType)
{
    setContentType(contentType);
}

KNMimeContentType KNMimeContentTypeHeader::getContentType() const
{
    return body()->getContentType();
}

void KNMimeContentTypeHeader::setContentType(const KNMimeContentType& contentType)
{
    body()->setContentType(contentType);
}
