#include <mime/KNMimeContentDispositionHeaderImp.h>

#include <mime/KNMimeContentDispositionImp.h>
#include <mime/KNMimeHeader.h>

KNMimeContentDispositionHeaderImp::KNMimeContentDispositionHeaderImp(const KNMimeContentDispositionHeaderImp& other)
    : KNMimeHeaderImp(other), disposition_(other.disposition_.copy())
{
}

KNMimeContentDispositionHeaderImp::~KNMimeContentDispositionHeaderImp() = default;

KNMimeHeader KNMimeContentDispositionHeaderImp::make()
{
    return KNMimeHeader(new KNMimeContentDispositionHeaderImp);
}

KNCString KNMimeContentDispositionHeaderImp::getValueAsString() const
{
    return disposition_.asString();
}

void KNMimeContentDispositionHeaderImp::appendValueTo(KNCString& out) const
{
    disposition_.body()->appendTo(out);
}

void KNMimeContentDispositionHeaderImp::setValueFromString(const KNCString& text)
{
    disposition_.fromString(text);
}

KNMimeContentDispositionHeaderImp* KNMimeContentDispositionHeaderImp::copy() const
{
    return new KNMimeContentDispositionHeaderImp(*this);
}

bool KNMimeContentDispositionHeaderImp::compareValueTo(const KNMimeHeaderImp& other) const
{
    return compareAs<KNMimeContentDispositionHeaderImp>(other, [](const KNMimeContentDispositionHeaderImp& a,
                                                                    const KNMimeContentDispositionHeaderImp& b) {
        return a.disposition_ == b.disposition_;
    });
}
