#include <mime/KNMimeVersionHeader.h>

KNMimeVersionHeader::KNMimeVersionHeader()
{
    setVersion(1, 0);
}

KNMimeVersionHeader::KNMimeVersionHeader(unsigned majorVersion, unsigned minorVersion)
{
    setVersion(majorVersion, minorVersion);
}

unsigned KNMimeVersionHeader::getMajorVersion() const
{
    return body()->getMajorVersion();
}

unsigned KNMimeVersionHeader::getMinorVersion() const
{
    return body()->getMinorVersion();
}

void KNMimeVersionHeader::setVersion(unsigned majorVersion, unsigned minorVersion)
{
    body()->setVersion(majorVersion, minorVersion);
}
