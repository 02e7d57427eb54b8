#include <mime/KNMimeMultipartRelatedType.h>

KNMimeMultipartRelatedType::KNMimeMultipartRelatedType() : KNMimeMultipartType(Related, KNCString()) {}

KNMimeMultipartRelatedType::KNMimeMultipartRelatedType(const KNCString& type, const KNCString& start,
                                                       const KNCString& startInfo, const KNCString& boundary)
    : KNMimeMultipartType(Related, boundary)
{
    setType(type);
    setStart(start);
    setStartInfo(startInfo);
}

// Like every constructor of this class, starts as a default multipart type: that draws a
// boundary number, dropped with the default body when `type` is taken over.
KNMimeMultipartRelatedType::KNMimeMultipartRelatedType(const KNMimeContentType& type)
{
    KNMimeContentType::operator=(type);
    if (!KNMimeMultipartRelatedType::checkType(getMediaType(), getSubType()))
        throwInvalidConversion();
}

KNMimeMultipartRelatedType::KNMimeMultipartRelatedType(KNMimeContentTypeImp* body)
    : KNMimeMultipartType(body)
{
}

bool KNMimeMultipartRelatedType::checkType(const KNCString& mediaType, const KNCString& subType) const
{
    return KNMimeMultipartType::checkType(mediaType, subType) && knEqualsIgnoreCase(subType, Related);
}

KNCString KNMimeMultipartRelatedType::getType() const
{
    return getParameterValue(Type, 0);
}

void KNMimeMultipartRelatedType::setType(const KNCString& type)
{
    setParameterValue(Type, type, 0);
}

KNCString KNMimeMultipartRelatedType::getStart() const
{
    return getParameterValue(Start, 0);
}

void KNMimeMultipartRelatedType::setStart(const KNCString& start)
{
    setParameterValue(Start, start, 0);
}

KNCString KNMimeMultipartRelatedType::getStartInfo() const
{
    return getParameterValue(StartInfo, 0);
}

void KNMimeMultipartRelatedType::setStartInfo(const KNCString& startInfo)
{
    setParameterValue(StartInfo, startInfo, 0);
}
