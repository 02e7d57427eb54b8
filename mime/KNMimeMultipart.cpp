#include <mime/KNMimeMultipart.h>

#include <foundation/KNMessage.h>
#include <mime/KNMimeContentTypeHeader.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeMessages.h>
#include <mime/KNMimeMultipartType.h>

#include <memory>

namespace {

KNMimeMultipartImp* newBodyFor(const KNMimeMultipartType& type)
{
    const KNMimeContentTypeHeader header(type);
    auto body = std::make_unique<KNMimeMultipartImp>();
    body->insertHeader(header);
    return body.release();
}

const KNMimePart& multipartOnly(const KNMimePart& part)
{
    if (!part.isMultipart())
        KNThrow(KNMimeError(KNMessage(knmime_INVALID_MULTIPART_CONVERSION())));
    return part;
}

} // namespace

KNMimeMultipart::KNMimeMultipart() : KNMimePart(new KNMimeMultipartImp) {}

KNMimeMultipart::KNMimeMultipart(const KNMimeMultipartType& type) : KNMimePart(newBodyFor(type)) {}

KNMimeMultipart::KNMimeMultipart(const KNMimePart& part) : KNMimePart(multipartOnly(part)) {}

KNMimeMultipart::KNMimeMultipart(KNMimeMultipartImp* body) : KNMimePart(body) {}

KNCString KNMimeMultipart::getPreamble() const
{
    return body()->getPreamble();
}

void KNMimeMultipart::setPreamble(const KNCString& preamble)
{
    body()->setPreamble(preamble);
}

std::size_t KNMimeMultipart::getPartCount() const
{
    return body()->getPartCount();
}

KNMimePart KNMimeMultipart::getPart(std::size_t i) const
{
    return body()->getPart(i);
}

void KNMimeMultipart::insertPart(const KNMimePart& part)
{
    body()->insertPart(part);
}

void KNMimeMultipart::insertPartAt(std::size_t i, const KNMimePart& part)
{
    body()->insertPartAt(i, part);
}

void KNMimeMultipart::removePartAt(std::size_t i)
{
    body()->removePartAt(i);
}

std::size_t KNMimeMultipart::findPart(const KNMimeHeader& header, std::size_t start) const
{
    return body()->findPart(header, start);
}
