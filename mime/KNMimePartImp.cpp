#include <mime/KNMimePartImp.h>

#include <mime/KNMimeHeaderImp.h>

namespace {
// Room reserved per header line when a printed size is estimated; lines are rarely longer.
constexpr std::size_t headerSizeGuess = 64;
}

KNMimePartImp::~KNMimePartImp() = default;

KNMimeHeader KNMimePartImp::getHeader(std::size_t i) const
{
    return headers_.at(i);
}

void KNMimePartImp::insertHeader(const KNMimeHeader& header)
{
    headers_.append(header);
}

void KNMimePartImp::insertHeaderAt(std::size_t i, const KNMimeHeader& header)
{
    headers_.insertAt(i, header);
}

void KNMimePartImp::removeHeaderAt(std::size_t i)
{
    headers_.removeAt(i);
}

std::size_t KNMimePartImp::findHeader(const KNCString& label, std::size_t start) const
{
    for (std::size_t i = start; i < headers_.size(); ++i) {
        if (headers_[i].body()->hasLabel(label))
            return i;
    }
    return KNCString::npos;
}

bool KNMimePartImp::compareHeaders(const KNMimePartImp& other) const
{
    return headers_ == other.headers_;
}

KNCString KNMimePartImp::asString() const
{
    KNCString out;
    out.reserve(printedSizeHint());
    appendTo(out);
    return out;
}

void KNMimePartImp::appendTo(KNCString& out) const
{
    for (const KNMimeHeader& header : headers_) {
        header.body()->appendTo(out);
        out += CRLF;
    }
    out += CRLF;
    appendBodyTo(out);
}

std::size_t KNMimePartImp::printedSizeHint() const
{
    return headers_.size() * headerSizeGuess + CRLF.size() + bodySizeHint();
}

bool operator==(const KNMimePartImp& left, const KNMimePartImp& right)
{
    return left.compareTo(right);
}

bool operator!=(const KNMimePartImp& left, const KNMimePartImp& right)
{
    return !left.compareTo(right);
}
