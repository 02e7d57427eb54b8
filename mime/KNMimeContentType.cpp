#include <mime/KNMimeContentType.h>

#include <foundation/KNMessage.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeMessages.h>
#include <mime/internal/KNMimeScan.h>

#include <string_view>
#include <utility>

KNMimeContentType::KNMimeContentType() : KNHandleBase(new KNMimeContentTypeImp()) {}

KNMimeContentType::KNMimeContentType(const KNCString& mediaType, const KNCString& subType,
                                     const KNMimeParameterList& parameters)
    : KNHandleBase(new KNMimeContentTypeImp(mediaType, subType, parameters))
{
}

KNMimeContentType::KNMimeContentType(KNMimeContentTypeImp* body) : KNHandleBase(body) {}

KNMimeContentType::~KNMimeContentType() = default;

bool KNMimeContentType::checkType(const KNCString&, const KNCString&) const
{
    return true;
}

KNMimeContentType KNMimeContentType::copy() const
{
    return KNMimeContentType(body()->copy());
}

KNCString KNMimeContentType::getMediaType() const
{
    return body()->getMediaType();
}

KNCString KNMimeContentType::getSubType() const
{
    return body()->getSubType();
}

void KNMimeContentType::fromString(const KNCString& text)
{
    body(); // an empty handle refuses before anything is read
    const std::string_view view(text);
    const std::size_t slash = KNMimeScan::findDelimiter(view, '/');
    if (slash == view.npos)
        KNThrow(KNMimeParseError(KNMessage(knmime_MISSING_TYPE_SEPARATOR())));
    KNCString mediaType = KNMimeScan::cleanToken(view.substr(0, slash), true);
    // The '/' was found unquoted, so the search for ';' may resume right after it.
    const std::size_t semicolon = KNMimeScan::findDelimiter(view, ';', slash + 1);
    KNCString subType;
    KNMimeParameterList parameters;
    if (semicolon == view.npos) {
        subType = KNMimeScan::cleanToken(view.substr(slash + 1), true);
    } else {
        subType = KNMimeScan::cleanToken(view.substr(slash + 1, semicolon - slash - 1), true);
        parameters = KNMimeParameterList::parsed(view.substr(semicolon + 1));
    }
    if (!checkType(mediaType, subType))
        KNThrow(KNMimeError(KNMessage(knmime_INVALID_TYPE_CONVERSION(), mediaType, subType)));
    // Nothing has changed so far; other handles sharing the old body keep its value.
    rebind(new KNMimeContentTypeImp(std::move(mediaType), std::move(subType), std::move(parameters)));
}

KNCString KNMimeContentType::asString() const
{
    return body()->asString();
}

void KNMimeContentType::throwInvalidConversion() const
{
    KNThrow(KNMimeError(KNMessage(knmime_INVALID_TYPE_CONVERSION(), getMediaType(), getSubType())));
}

bool operator==(const KNMimeContentType& a, const KNMimeContentType& b)
{
    return *a.body() == *b.body();
}

bool operator!=(const KNMimeContentType& a, const KNMimeContentType& b)
{
    return !(a == b);
}
