#include <mime/KNMimeStringPartImp.h>

#include <foundation/KNxmsg.h>
#include <mime/KNMimeMultipartImp.h>

#include <utility>

KNMimeStringPartImp::KNMimeStringPartImp(KNCString body) : body_(std::move(body)) {}

KNMimeStringPartImp::~KNMimeStringPartImp() = default;

KNCString KNMimeStringPartImp::getBody() const
{
    return body_;
}

void KNMimeStringPartImp::setBody(const KNCString& body)
{
    body_ = body;
}

bool KNMimeStringPartImp::isMultipart() const
{
    return false;
}

bool KNMimeStringPartImp::compareTo(const KNMimePartImp& other) const
{
    return compareHeaders(other) && other.compareTo(*this);
}

bool KNMimeStringPartImp::compareTo(const KNMimeStringPartImp& other) const
{
    return body_ == other.body_;
}

bool KNMimeStringPartImp::compareTo(const KNMimeMultipartImp& other) const
{
    try {
        return body_ == other.asString();
    } catch (const KNxmsg&) {
        return false; // a multipart that cannot be printed equals no string
    }
}

void KNMimeStringPartImp::appendBodyTo(KNCString& out) const
{
    out += body_;
}

std::size_t KNMimeStringPartImp::bodySizeHint() const
{
    return body_.size();
}
