#include <mime/KNMimeContentLocationHeader.h>

KNMimeContentLocationHeader::KNMimeContentLocationHeader(const KNCString& uri)
{
    setURI(uri);
}

KNCString KNMimeContentLocationHeader::getURI() const
{
    return body()->getValue();
}

void KNMimeContentLocationHeader::setURI(const KNCString& uri)
{
    body()->setValue(uri);
}
