#include <mime/KNMimeContentTypeHeader.h>

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
