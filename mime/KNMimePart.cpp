#include <mime/KNMimePart.h>

#include <mime/KNMimeContentType.h>
#include <mime/KNMimeContentTypeHeader.h>
#include <mime/KNMimeMultipart.h>
#include <mime/KNMimeMultipartImp.h>
#include <mime/KNMimeMultipartType.h>
#include <mime/KNMimeStringPartImp.h>
#include <mime/internal/KNMimeEntityText.h>
#include <mime/internal/KNMimeHeaderArena.h>

#include <memory>

namespace {

KNMimePartImp* newBodyFor(const KNMimeContentType& type)
{
    const KNMimeContentTypeHeader header(type);
    std::unique_ptr<KNMimePartImp> body;
    if (knEqualsIgnoreCase(type.getMediaType(), KNMimeMultipartType::Multipart))
        body = std::make_unique<KNMimeMultipartImp>();
    else
        body = std::make_unique<KNMimeStringPartImp>();
    body->insertHeader(header);
    return body.release();
}

} // namespace

KNMimePart::KNMimePart() : KNHandleBase(new KNMimeStringPartImp) {}

KNMimePart::KNMimePart(const KNMimeContentType& type) : KNHandleBase(newBodyFor(type)) {}

KNMimePart::KNMimePart(KNMimePartImp* body) : KNHandleBase(body) {}

KNMimePart::~KNMimePart() = default;

KNCString KNMimePart::asString() const
{
    return body()->asString();
}

void KNMimePart::fromString(const KNCString& text)
{
    body(); // like every operation, refused on an empty handle
    // A multipart handle must keep a multipart body, whichever static type it is called through.
    const bool multipartHandle = dynamic_cast<const KNMimeMultipart*>(this) != nullptr;
    const KNMimeHeaderArena::Scope headerMemory;
    const KNMimePart parsed = KNMimeEntityText::parseEntity(text, 0, multipartHandle);
    *this = parsed;
}

bool KNMimePart::isMultipart() const
{
    return body()->isMultipart();
}

KNCString KNMimePart::getBody() const
{
    return body()->getBody();
}

void KNMimePart::setBody(const KNCString& body)
{
    this->body()->setBody(body);
}

std::size_t KNMimePart::getHeaderCount() const
{
    return body()->getHeaderCount();
}

KNMimeHeader KNMimePart::getHeader(std::size_t i) const
{
    return body()->getHeader(i);
}

void KNMimePart::insertHeader(const KNMimeHeader& header)
{
    body()->insertHeader(header);
}

void KNMimePart::insertHeaderAt(std::size_t i, const KNMimeHeader& header)
{
    body()->insertHeaderAt(i, header);
}

void KNMimePart::removeHeaderAt(std::size_t i)
{
    body()->removeHeaderAt(i);
}

std::size_t KNMimePart::findHeader(const KNCString& label, std::size_t start) const
{
    return body()->findHeader(label, start);
}

bool KNMimePart::hasMultipartHeader() const
{
    const KNMimePartImp& part = *body();
    const std::size_t i = part.findHeader(KNMimeContentTypeHeader::Label, 0);
    return i != KNCString::npos && KNMimeEntityText::isMultipartContentType(part.getHeader(i));
}

bool operator==(const KNMimePart& left, const KNMimePart& right)
{
    return *left.body() == *right.body();
}

bool operator!=(const KNMimePart& left, const KNMimePart& right)
{
    return !(left == right);
}
