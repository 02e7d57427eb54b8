#include <mime/KNMimeContentIdHeader.h>

// Stored exactly as given: no angle brackets are added or removed.
KNMimeContentIdHeader::KNMimeContentIdHeader(const KNCString& id)
{
    setId(id);
}

KNCString KNMimeContentIdHeader::getId() const
{
    return body()->getValue();
}

void KNMimeContentIdHeader::setId(const KNCString& id)
{
    body()->setValue(id);
}
