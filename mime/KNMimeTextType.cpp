#include <mime/KNMimeTextType.h>

KNMimeTextType::KNMimeTextType() : KNMimeContentType(Text, Plain, KNMimeParameterList()) {}

KNMimeTextType::KNMimeTextType(const KNCString& subType, const KNCString& charset)
    : KNMimeContentType(Text, subType, KNMimeParameterList())
{
    setCharset(charset);
}

KNMimeTextType::KNMimeTextType(const KNMimeContentType& type) : KNMimeContentType(type.body())
{
    // This class's own rule decides, whatever a subclass would accept.
    if (!KNMimeTextType::checkType(getMediaType(), getSubType()))
        throwInvalidConversion();
}

KNMimeTextType::KNMimeTextType(KNMimeContentTypeImp* body) : KNMimeContentType(body) {}

bool KNMimeTextType::checkType(const KNCString& mediaType, const KNCString&) const
{
    return knEqualsIgnoreCase(mediaType, Text);
}

KNCString KNMimeTextType::getCharset() const
{
    return getParameterValue(Charset, 0);
}

void KNMimeTextType::setCharset(const KNCString& charset)
{
    setParameterValue(Charset, charset, 0);
}
