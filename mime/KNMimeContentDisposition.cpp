#include <mime/KNMimeContentDisposition.h>

KNMimeContentDisposition::KNMimeContentDisposition() : KNHandleBase(new KNMimeContentDispositionImp()) {}

KNMimeContentDisposition::KNMimeContentDisposition(const KNCString& type, const KNCString& filename)
    : KNHandleBase(new KNMimeContentDispositionImp(type, filename))
{
}

KNMimeContentDisposition::KNMimeContentDisposition(KNMimeContentDispositionImp* body) : KNHandleBase(body) {}

KNMimeContentDisposition::~KNMimeContentDisposition() = default;

KNMimeContentDisposition KNMimeContentDisposition::copy() const
{
    return KNMimeContentDisposition(body()->copy());
}

KNCString KNMimeContentDisposition::getType() const
{
    return body()->getType();
}

void KNMimeContentDisposition::setType(const KNCString& type)
{
    body()->setType(type);
}

KNCString KNMimeContentDisposition::getFilename() const
{
    return body()->getFilename();
}

void KNMimeContentDisposition::setFilename(const KNCString& filename)
{
    body()->setFilename(filename);
}

void KNMimeContentDisposition::fromString(const KNCString& text)
{
    body()->fromString(text);
}

KNCString KNMimeContentDisposition::asString() const
{
    return body()->asString();
}

bool operator==(const KNMimeContentDisposition& a, const KNMimeContentDisposition& b)
{
    return *a.body() == *b.body();
}

bool operator!=(const KNMimeContentDisposition& a, const KNMimeContentDisposition& b)
{
    return !(a == b);
}
