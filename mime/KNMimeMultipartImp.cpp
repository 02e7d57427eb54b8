#include <mime/KNMimeMultipartImp.h>

#include <foundation/KNxmsg.h>
#include <mime/KNMimeStringPartImp.h>
#include <mime/internal/KNMimeEntityText.h>

namespace {
// Room reserved per delimiter line when a printed size is estimated (boundaries stay
// below 70 characters).
constexpr std::size_t delimiterSizeGuess = 80;
}

const KNCString KNMimeMultipartImp::CRLF = "\r\n";
const KNCString KNMimeMultipartImp::boundaryMarker = "--";

KNMimeMultipartImp::~KNMimeMultipartImp() = default;

KNCString KNMimeMultipartImp::getBody() const
{
    KNCString out;
    out.reserve(bodySizeHint());
    appendBodyTo(out);
    return out;
}

void KNMimeMultipartImp::setBody(const KNCString& body)
{
    parts_.clear();
    preamble_.clear();
    KNMimeEntityText::parseMultipartBody(*this, body, 1);
}

bool KNMimeMultipartImp::isMultipart() const
{
    return true;
}

bool KNMimeMultipartImp::compareTo(const KNMimePartImp& other) const
{
    return compareHeaders(other) && other.compareTo(*this);
}

bool KNMimeMultipartImp::compareTo(const KNMimeStringPartImp& other) const
{
    try {
        return asString() == other.asString();
    } catch (const KNxmsg&) {
        return false; // an entity that cannot be printed equals nothing
    }
}

bool KNMimeMultipartImp::compareTo(const KNMimeMultipartImp& other) const
{
    return preamble_ == other.preamble_ && parts_ == other.parts_;
}

KNMimePart KNMimeMultipartImp::getPart(std::size_t i) const
{
    return parts_.at(i);
}

void KNMimeMultipartImp::insertPart(const KNMimePart& part)
{
    parts_.append(part);
}

void KNMimeMultipartImp::insertPartAt(std::size_t i, const KNMimePart& part)
{
    parts_.insertAt(i, part);
}

void KNMimeMultipartImp::removePartAt(std::size_t i)
{
    parts_.removeAt(i);
}

std::size_t KNMimeMultipartImp::findPart(const KNMimeHeader& header, std::size_t start) const
{
    if (start >= parts_.size())
        return KNCString::npos; // nothing to search: the header is not even looked at
    const KNCString label = header.getLabel();
    for (std::size_t i = start; i < parts_.size(); ++i) {
        const KNMimePartImp& part = *parts_[i].body();
        for (std::size_t j = part.findHeader(label, 0); j != KNCString::npos; j = part.findHeader(label, j + 1)) {
            if (part.getHeader(j) == header)
                return i;
        }
    }
    return KNCString::npos;
}

void KNMimeMultipartImp::appendBodyTo(KNCString& out) const
{
    const KNCString boundary = KNMimeEntityText::boundaryOf(*this);
    if (!preamble_.empty()) {
        out += preamble_;
        out += CRLF;
    }
    for (const KNMimePart& part : parts_) {
        out += boundaryMarker;
        out += boundary;
        out += CRLF;
        part.body()->appendTo(out);
        out += CRLF;
    }
    out += boundaryMarker;
    out += boundary;
    out += boundaryMarker;
    out += CRLF;
}

std::size_t KNMimeMultipartImp::bodySizeHint() const
{
    std::size_t size = preamble_.size() + CRLF.size() + delimiterSizeGuess;
    // Only a guess: an empty handle among the parts is refused by the printing itself, after
    // the boundary has been checked.
    for (const KNMimePart& part : parts_)
        size += (part.isEmpty() ? 0 : part.body()->printedSizeHint()) + delimiterSizeGuess;
    return size;
}
