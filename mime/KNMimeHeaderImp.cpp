#include <mime/KNMimeHeaderImp.h>

#include <foundation/KNMessage.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeMessages.h>
#include <mime/internal/KNMimeScan.h>

#include <cstddef>

namespace {

// Printed lines longer than this are folded.
constexpr std::size_t foldLimit = 78;

// A printable label is non-empty and free of blanks, colons, control characters and DEL.
// The label is read as a C string, so bytes after an embedded NUL are not examined.
bool isPrintableLabel(const KNCString& label) noexcept
{
    if (label.empty())
        return false;
    for (const char c : label) {
        const unsigned char byte = static_cast<unsigned char>(c);
        if (byte == 0)
            break;
        if (byte < 0x20 || byte == ' ' || byte == ':' || byte == 0x7F)
            return false;
    }
    return true;
}

// True when a CR or LF in the value is not part of a fold (CR LF then a blank or a tab):
// such a byte would end the header line early, so that the rest reads as another header
// or ends the header block.
bool hasLineBreakOutsideFold(const KNCString& value) noexcept
{
    for (std::size_t i = value.find_first_of("\r\n"); i != KNCString::npos; i = value.find_first_of("\r\n", i)) {
        if (value[i] == '\n' || i + 2 >= value.size() || value[i + 1] != '\n' || !KNMimeScan::isBlank(value[i + 2]))
            return true;
        i += 3;
    }
    return false;
}

} // namespace

KNMimeHeaderImp::~KNMimeHeaderImp() = default;

bool KNMimeHeaderImp::compareValueTo(const KNMimeHeaderImp& other) const
{
    // A value that cannot be printed equals nothing, not even itself.
    try {
        return getValueAsString() == other.getValueAsString();
    } catch (...) {
        return false;
    }
}

KNCString KNMimeHeaderImp::asString() const
{
    // The catalogue has an INVALID_LABEL message, but a bad label has always been reported
    // with INVALID_VERSION; callers match on that text.
    if (!isPrintableLabel(label_))
        KNThrow(KNMimeError(KNMessage(knmime_INVALID_VERSION(), label_)));
    const KNCString value = getValueAsString();
    if (hasLineBreakOutsideFold(value))
        KNThrow(KNMimeError(KNMessage(knmime_INVALID_VALUE(), value)));
    KNCString line;
    line.reserve(label_.size() + 2 + value.size());
    line.append(label_).append(": ").append(value);
    // No line of a text this short can exceed the limit, so folding would change nothing.
    if (line.size() <= foldLimit)
        return line;
    KNCString folded;
    folded.reserve(line.size() + 2 * (line.size() / foldLimit) + 10);
    KNMimeScan::appendFolded(folded, line);
    return folded;
}

bool KNMimeHeaderImp::compareLabelTo(const KNMimeHeaderImp& other) const
{
    return knEqualsIgnoreCase(label_, other.label_);
}

bool operator==(const KNMimeHeaderImp& a, const KNMimeHeaderImp& b)
{
    return a.compareLabelTo(b) && a.compareValueTo(b);
}

bool operator!=(const KNMimeHeaderImp& a, const KNMimeHeaderImp& b)
{
    return !(a == b);
}
