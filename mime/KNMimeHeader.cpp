#include <mime/KNMimeHeader.h>

#include <foundation/KNMessage.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeHeaderFactory.h>
#include <mime/KNMimeHeaderImp.h>
#include <mime/KNMimeMessages.h>
#include <mime/internal/KNMimeHeaderLine.h>
#include <mime/internal/KNMimeScan.h>

#include <cstddef>
#include <string_view>
#include <utility>

namespace {

// The factory, held once for this file: a header made per line should not pay for the
// counted pointer's two atomic updates that instance() costs each time. The hold is never
// let go, so headers can be made from static destructors too.
const KNMimeHeaderFactory& factory()
{
    static const auto* const held =
        new KNTCountingPointer<KNMimeHeaderFactory, KNAtomicCounter>(KNMimeHeaderFactory::instance());
    return **held;
}

struct SplitLine {
    KNCString label; // cleaned of comments, blanks and quotes
    KNCString value; // unfolded and trimmed
};

// Splits at the first colon outside quotes and comments.
SplitLine split(std::string_view line)
{
    const std::size_t colon = KNMimeScan::findDelimiter(line, ':');
    if (colon == std::string_view::npos)
        KNThrow(KNMimeParseError(KNMessage(knmime_MISSING_HEADER_SEPARATOR())));
    return {KNMimeScan::cleanToken(line.substr(0, colon), true), KNMimeScan::unfoldAndTrim(line.substr(colon + 1))};
}

// An empty value keeps the default of the body class (text/plain for Content-Type).
void readValue(KNMimeHeaderImp& body, KNCString&& value)
{
    if (!value.empty())
        body.takeValueFromString(std::move(value));
}

} // namespace

KNMimeHeader::KNMimeHeader() : KNMimeHeader(factory().create(KNCString())) {}

// The body class follows the case-insensitive lookup; the label keeps the caller's spelling.
KNMimeHeader::KNMimeHeader(const KNCString& label) : KNMimeHeader(factory().create(label))
{
    body()->setLabel(label);
}

KNMimeHeader::KNMimeHeader(KNMimeHeaderImp* body) : KNHandleBase(body) {}

KNMimeHeader::~KNMimeHeader() = default;

KNCString KNMimeHeader::getLabel() const
{
    return body()->getLabel();
}

KNCString KNMimeHeader::asString() const
{
    return body()->asString();
}

// A line without a separator, or with a label this handle may not carry, leaves the handle
// untouched. Otherwise the handle is rebound to a new body from the factory before the value
// is read, so handles that shared the old body keep it, and a value the body refuses leaves
// this handle with the new label and whatever the body read before failing.
void KNMimeHeader::fromString(const KNCString& text)
{
    checkedBody();
    SplitLine line = split(text);
    // The refusal names the label this handle had, not the parsed one.
    if (!checkLabel(line.label))
        throwConversionRefused(getLabel());
    KNHandleBase::operator=(KNMimeHeader(line.label));
    readValue(*body(), std::move(line.value));
}

KNMimeHeader KNMimeHeaderLine::parse(std::string_view text)
{
    SplitLine line = split(text);
    KNMimeHeader header(factory().create(line.label));
    KNMimeHeaderImp& body = *header.body();
    body.setLabel(std::move(line.label));
    readValue(body, std::move(line.value));
    return header;
}

KNMimeHeader KNMimeHeader::copy() const
{
    return KNMimeHeader(body()->copy());
}

bool KNMimeHeader::checkLabel(const KNCString&) const
{
    return true;
}

KNMimeHeaderImp* KNMimeHeader::body() const
{
    return rootBody<KNMimeHeaderImp>();
}

void KNMimeHeader::throwConversionRefused(const KNCString& label)
{
    KNThrow(KNMimeError(KNMessage(knmime_INVALID_HEADER_CONVERSION(), label)));
}

bool operator==(const KNMimeHeader& a, const KNMimeHeader& b)
{
    return *a.body() == *b.body();
}

bool operator!=(const KNMimeHeader& a, const KNMimeHeader& b)
{
    return !(a == b);
}
