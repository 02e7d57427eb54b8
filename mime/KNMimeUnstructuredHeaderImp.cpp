#include <mime/KNMimeUnstructuredHeaderImp.h>

#include <mime/KNMimeHeader.h>

#include <utility>

KNMimeUnstructuredHeaderImp::~KNMimeUnstructuredHeaderImp() = default;

KNMimeHeader KNMimeUnstructuredHeaderImp::make()
{
    return KNMimeHeader(new KNMimeUnstructuredHeaderImp);
}

KNCString KNMimeUnstructuredHeaderImp::getValueAsString() const
{
    return value_;
}

// Free text is kept byte for byte: encoded words are neither decoded nor checked.
void KNMimeUnstructuredHeaderImp::setValueFromString(const KNCString& text)
{
    value_ = text;
}

void KNMimeUnstructuredHeaderImp::takeValueFromString(KNCString&& text)
{
    value_ = std::move(text);
}

void KNMimeUnstructuredHeaderImp::appendValueTo(KNCString& out) const
{
    out += value_;
}

KNMimeUnstructuredHeaderImp* KNMimeUnstructuredHeaderImp::copy() const
{
    return new KNMimeUnstructuredHeaderImp(*this);
}
