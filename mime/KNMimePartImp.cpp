#include <mime/KNMimePartImp.h>

#include <foundation/KNBoundsErr.h>

namespace {
// Room reserved per header line when a printed size is estimated; lines are rarely longer.
constexpr std::size_t headerSizeGuess = 64;
}

const KNCString KNMimePartImp::CRLF = "\r\n";

KNMimePartImp::~KNMimePartImp() = default;

KNMimeHeader KNMimePartImp::getHeader(std::size_t i) const
{
    if (i >= headers_.size())
        throw KNBoundsErr(i, headers_.size());
    return headers_[i];
}

void KNMimePartImp::insertHeader(const KNMimeHeader& header)
{
    headers_.push_back(header);
}

void KNMimePartImp::insertHeaderAt(std::size_t i, const KNMimeHeader& header)
{
    // The error names the last index that would have been refused as a plain index,
    // one below the position passed.
    if (i > headers_.size())
        throw KNBoundsErr(i - 1, headers_.size());
    headers_.insert(headers_.begin() + static_cast<std::ptrdiff_t>(i), header);
}

void KNMimePartImp::removeHeaderAt(std::size_t i)
{
    if (i >= headers_.size())
        throw KNBoundsErr(i, headers_.size());
    headers_.erase(headers_.begin() + static_cast<std::ptrdiff_t>(i));
}

std::size_t KNMimePartImp::findHeader(const KNCString& label, std::size_t start) const
{
    for (std::size_t i = start; i < headers_.size(); ++i) {
        if (knEqualsIgnoreCase(headers_[i].getLabel(), label))
            return i;
    }
    return KNCString::npos;
}

bool KNMimePartImp::compareHeaders(const KNMimePartImp& other) const
{
    if (headers_.size() != other.headers_.size())
        return false;
    for (std::size_t i = 0; i < headers_.size(); ++i) {
        if (headers_[i] != other.headers_[i])
            return false;
    }
    return true;
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
        out += header.asString();
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
