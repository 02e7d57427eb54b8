#include <mime/KNMimeContentTypeHeaderImp.h>

#include <mime/KNMimeHeader.h>
#include <mime/KNMimeParameterList.h>

KNMimeContentTypeHeaderImp::KNMimeContentTypeHeaderImp() : contentType_("text", "plain", KNMimeParameterList()) {}

KNMimeContentTypeHeaderImp::KNMimeContentTypeHeaderImp(const KNMimeContentTypeHeaderImp& other)
    : KNMimeHeaderImp(other), contentType_(other.contentType_.copy())
{
}

KNMimeContentTypeHeaderImp::~KNMimeContentTypeHeaderImp() = default;

KNMimeHeader KNMimeContentTypeHeaderImp::make()
{
    return KNMimeHeader(new KNMimeContentTypeHeaderImp);
}

KNCString KNMimeContentTypeHeaderImp::getValueAsString() const
{
    return contentType_.asString();
}

void KNMimeContentTypeHeaderImp::setValueFromString(const KNCString& text)
{
    contentType_.fromString(text);
}

KNMimeContentTypeHeaderImp* KNMimeContentTypeHeaderImp::copy() const
{
    return new KNMimeContentTypeHeaderImp(*this);
}

bool KNMimeContentTypeHeaderImp::compareValueTo(const KNMimeHeaderImp& other) const
{
    return compareAs<KNMimeContentTypeHeaderImp>(other, [](const KNMimeContentTypeHeaderImp& a,
                                                             const KNMimeContentTypeHeaderImp& b) {
        return a.contentType_ == b.contentType_;
    });
}
