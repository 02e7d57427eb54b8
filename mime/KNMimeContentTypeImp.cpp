#include <mime/KNMimeContentTypeImp.h>

#include <foundation/KNMessage.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeMessages.h>
#include <mime/internal/KNMimeScan.h>

#include <utility>

namespace {

void requireToken(const KNCString& text)
{
    if (!KNMimeScan::isToken(text))
        KNThrow(KNMimeError(KNMessage(knmime_INVALID_TOKEN(), text)));
}

} // namespace

KNMimeContentTypeImp::KNMimeContentTypeImp() = default;

KNMimeContentTypeImp::KNMimeContentTypeImp(KNCString mediaType, KNCString subType,
                                           KNMimeParameterList parameters)
    : mediaType_(std::move(mediaType)), subType_(std::move(subType)), parameters_(std::move(parameters))
{
}

KNMimeContentTypeImp::~KNMimeContentTypeImp() = default;

KNCString KNMimeContentTypeImp::asString() const
{
    KNCString result;
    result.reserve(20 * parameters_.getParameterCount() + 20);
    appendTo(result);
    return result;
}

void KNMimeContentTypeImp::appendTo(KNCString& out) const
{
    requireToken(mediaType_);
    requireToken(subType_);
    out += mediaType_;
    out += '/';
    out += subType_;
    parameters_.appendTo(out);
}

KNMimeContentTypeImp* KNMimeContentTypeImp::copy() const
{
    return new KNMimeContentTypeImp(*this);
}

void KNMimeContentTypeImp::setMediaType(const KNCString& mediaType)
{
    mediaType_ = mediaType;
}

void KNMimeContentTypeImp::setSubType(const KNCString& subType)
{
    subType_ = subType;
}

bool operator==(const KNMimeContentTypeImp& a, const KNMimeContentTypeImp& b)
{
    return knEqualsIgnoreCase(a.getMediaType(), b.getMediaType())
        && knEqualsIgnoreCase(a.getSubType(), b.getSubType())
        && a.parameterList() == b.parameterList();
}

bool operator!=(const KNMimeContentTypeImp& a, const KNMimeContentTypeImp& b)
{
    return !(a == b);
}
