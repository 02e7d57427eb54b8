#include <mime/KNMimeMultipartType.h>

#include <mime/KNMimeUtils.h>

KNMimeMultipartType::KNMimeMultipartType() : KNMimeMultipartType(Mixed, KNCString()) {}

KNMimeMultipartType::KNMimeMultipartType(const KNCString& subType, const KNCString& boundary)
    : KNMimeContentType(Multipart, subType, KNMimeParameterList())
{
    // A multipart type made here can always be printed with its parts: it has a boundary.
    setBoundary(boundary.empty() ? KNMimeUtils::getUniqueBoundary() : boundary);
}

KNMimeMultipartType::KNMimeMultipartType(const KNMimeContentType& type) : KNMimeContentType(type.body())
{
    if (!KNMimeMultipartType::checkType(getMediaType(), getSubType()))
        throwInvalidConversion();
}

KNMimeMultipartType::KNMimeMultipartType(KNMimeContentTypeImp* body) : KNMimeContentType(body) {}

bool KNMimeMultipartType::checkType(const KNCString& mediaType, const KNCString&) const
{
    return knEqualsIgnoreCase(mediaType, Multipart);
}

KNCString KNMimeMultipartType::getBoundary() const
{
    return getParameterValue(Boundary, 0);
}

void KNMimeMultipartType::setBoundary(const KNCString& boundary)
{
    setParameterValue(Boundary, boundary, 0);
}
