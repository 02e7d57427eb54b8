#include <mime/KNMimeVersionHeaderImp.h>

#include <foundation/KNMessage.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeHeader.h>
#include <mime/KNMimeMessages.h>
#include <mime/internal/KNMimeScan.h>

#include <charconv>
#include <cstdint>
#include <limits>

namespace {

// Reads a number at p as "%u" would (white space, an optional sign, decimal digits; a minus
// sign negates modulo 2^32) and stores it, stepping p past it. False, with nothing stored,
// when there are no digits or the digits exceed 32 bits.
bool readNumber(const char*& p, unsigned& number) noexcept
{
    while (*p == ' ' || (*p >= '\t' && *p <= '\r'))
        ++p;
    const bool negative = *p == '-';
    if (*p == '+' || *p == '-')
        ++p;
    if (*p < '0' || *p > '9')
        return false;
    std::uint64_t value = 0;
    for (; *p >= '0' && *p <= '9'; ++p) {
        value = value * 10 + static_cast<unsigned>(*p - '0');
        if (value > std::numeric_limits<unsigned>::max())
            return false;
    }
    number = negative ? 0u - static_cast<unsigned>(value) : static_cast<unsigned>(value);
    return true;
}

} // namespace

KNMimeVersionHeaderImp::~KNMimeVersionHeaderImp() = default;

KNMimeHeader KNMimeVersionHeaderImp::make()
{
    return KNMimeHeader(new KNMimeVersionHeaderImp);
}

KNCString KNMimeVersionHeaderImp::getValueAsString() const
{
    KNCString text;
    appendValueTo(text);
    return text;
}

void KNMimeVersionHeaderImp::appendValueTo(KNCString& out) const
{
    constexpr std::size_t digits = std::numeric_limits<unsigned>::digits10 + 1;
    char text[2 * digits + 1];
    char* const point = std::to_chars(text, text + digits, majorVersion_).ptr;
    *point = '.';
    char* const end = std::to_chars(point + 1, point + 1 + digits, minorVersion_).ptr;
    out.append(text, static_cast<std::size_t>(end - text));
}

// Comments are dropped first so that "1.0 (produced by ...)" reads. The numbers are
// scanned straight into the body, and that partial update is intended: a text holding
// only a major number sets it and then fails.
void KNMimeVersionHeaderImp::setValueFromString(const KNCString& text)
{
    const KNCString cleaned = KNMimeScan::cleanToken(text, true);
    const char* p = cleaned.c_str();
    if (!readNumber(p, majorVersion_) || *p++ != '.' || !readNumber(p, minorVersion_))
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
