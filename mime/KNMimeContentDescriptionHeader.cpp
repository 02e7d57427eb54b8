#include <mime/KNMimeContentDescriptionHeader.h>

KNMimeContentDescriptionHeader::KNMimeContentDescriptionHeader(const KNCString& description)
{
    setDescription(description);
}

KNCString KNMimeContentDescriptionHeader::getDescription() const
{
    return body()->getValue();
}

void KNMimeContentDescriptionHeader::setDescription(const KNCString& description)
{
    body()->setValue(description);
}
