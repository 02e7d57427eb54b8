#include <mime/KNMimeVersionHeaderImp.h>

#include <foundation/KNMessage.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeHeader.h>
#include <mime/KNMimeMessages.h>
#include <mime/internal/KNMimeScan.h>

#include <cstdio>

KNMimeVersionHeaderImp::~KNMimeVersionHeaderImp() = default;

KNMimeHeader KNMimeVersionHeaderImp::make()
{
    return KNMimeHeader(new KNMimeVersionHeaderImp);
}

KNCString KNMimeVersionHeaderImp::getValueAsString() const
{
    char text[24]; // two 32-bit numbers and a point
    std::snprintf(text, sizeof text, "%u.%u", majorVersion_, minorVersion_);
    return text;
}

// Comments are dropped first so that "1.0 (produced by ...)" reads. The numbers are
// scanned straight into the body, and that partial update is intended: a text holding
// only a major number sets it and then fails.
void KNMimeVersionHeaderImp::setValueFromString(const KNCString& text)
{
    const KNCString cleaned = KNMimeScan::cleanToken(text, true);
    if (std::sscanf(cleaned.c_str(), "%u.%u", &majorVersion_, &minorVersion_) != 2)
        KNThrow(KNMimeParseError(KNMessage(knmime_INVALID_VERSION(), text)));
}

KNMimeVersionHeaderImp* KNMimeVersionHeaderImp::copy() const
{
    return new KNMimeVersionHeaderImp(*this);
}

bool KNMimeVersionHeaderImp::compareValueTo(const KNMimeHeaderImp& other) const
{
    return compareAs<KNMimeVersionHeaderImp>(other, [](const KNMimeVersionHeaderImp& a, const KNMimeVersionHeaderImp& b) {
        return a.majorVersion_ == b.majorVersion_ && a.minorVersion_ == b.minorVersion_;
    });
}
