#include <mime/KNMimeContentTypeHeaderImp.h>

#include <mime/KNMimeHeader.h>
#include <mime/KNMimeContentTypeImp.h>
#include <mime/KNMimeParameterList.h>

#include <typeinfo>

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

void KNMimeContentTypeHeaderImp::appendValueTo(KNCString& out) const
{
    const KNMimeContentTypeImp* type = contentType_.body();
    if (typeid(*type) == typeid(KNMimeContentTypeImp))
        type->appendTo(out);
    else
        out += type->asString(); // a class of the application's may print its own way
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
