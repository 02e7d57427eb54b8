#include <mime/KNMimeHeaderImp.h>

#include <foundation/KNMessage.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeMessages.h>
#include <mime/internal/KNMimeHeaderArena.h>
#include <mime/internal/KNMimeScan.h>

#include <cstddef>
#include <cstring>
#include <string_view>

namespace {

// Printed lines longer than this are folded.
constexpr std::size_t foldLimit = 78;

// Bytes a label may not hold: controls, blank, colon and DEL. NUL is among them but ends
// the check instead, because the label is read as a C string: bytes after an embedded NUL
// are not examined.
struct LabelStopTable {
    bool flags[256] = {};

    constexpr LabelStopTable()
    {
        for (int c = 0; c <= ' '; ++c)
            flags[c] = true;
        flags[static_cast<unsigned char>(':')] = true;
        flags[0x7F] = true;
    }
};

constexpr LabelStopTable labelStop;

// A printable label is non-empty and free of blanks, colons, control characters and DEL.
bool isPrintableLabel(const KNCString& label) noexcept
{
    if (label.empty())
        return false;
    for (const char c : label) {
        if (labelStop.flags[static_cast<unsigned char>(c)])
            return c == '\0';
    }
    return true;
}

// True when a CR or LF in the value is not part of a fold (CR LF then a blank or a tab):
// such a byte would end the header line early, so that the rest reads as another header
// or ends the header block.
bool hasLineBreakOutsideFold(std::string_view value) noexcept
{
    std::size_t i = 0;
    for (std::size_t at = KNMimeScan::findLineBreak(value); at != std::string_view::npos;
         at = KNMimeScan::findLineBreak(value.substr(i))) {
        i += at;
        if (value[i] == '\n' || i + 2 >= value.size() || value[i + 1] != '\n' || !KNMimeScan::isBlank(value[i + 2]))
            return true;
        i += 3;
    }
    return false;
}

} // namespace

KNMimeHeaderImp::~KNMimeHeaderImp() = default;

void* KNMimeHeaderImp::operator new(std::size_t size)
{
    return KNMimeHeaderArena::allocate(size);
}

void KNMimeHeaderImp::operator delete(void* body, std::size_t size) noexcept
{
    KNMimeHeaderArena::release(body, size);
}

bool KNMimeHeaderImp::compareValueTo(const KNMimeHeaderImp& other) const
{
    // A value that cannot be printed equals nothing, not even itself.
    try {
        return getValueAsString() == other.getValueAsString();
    } catch (...) {
        return false;
    }
}

void KNMimeHeaderImp::takeValueFromString(KNCString&& text)
{
    setValueFromString(text);
}

void KNMimeHeaderImp::appendValueTo(KNCString& out) const
{
    out += getValueAsString();
}

KNCString KNMimeHeaderImp::asString() const
{
    // Room for most lines, folded ones of a few hundred bytes included, so that appending
    // the label, the value and any fold does not regrow the string.
    constexpr std::size_t lineGuess = 512;
    KNCString line;
    line.reserve(lineGuess);
    appendTo(line);
    return line;
}

// The line is written straight into `out` and checked and folded there, so that printing
// a header costs no string of its own unless its value has to be built.
void KNMimeHeaderImp::appendTo(KNCString& out) const
{
    // The catalogue has an INVALID_LABEL message, but a bad label has always been reported
    // with INVALID_VERSION; callers match on that text.
    if (!isPrintableLabel(label_))
        KNThrow(KNMimeError(KNMessage(knmime_INVALID_VERSION(), label_)));
    const std::size_t start = out.size();
    out.append(label_).append(": ");
    const std::size_t valueStart = out.size();
    try {
        appendValueTo(out);
    } catch (...) {
        out.resize(start);
        throw;
    }
    const std::size_t length = out.size() - start;
    const std::string_view value(out.data() + valueStart, out.size() - valueStart);
    if (hasLineBreakOutsideFold(value)) {
        const KNCString refused(value);
        out.resize(start);
        KNThrow(KNMimeError(KNMessage(knmime_INVALID_VALUE(), refused)));
    }
    // No line of a text this short can exceed the limit, so folding would change nothing.
    if (length <= foldLimit)
        return;
    // Fold into the room behind the line, then move the folded text down over it.
    const std::size_t end = out.size();
    out.resize(end + KNMimeScan::foldedSizeBound(length));
    char* const base = out.data();
    const std::size_t folded =
        static_cast<std::size_t>(KNMimeScan::writeFolded(base + end, std::string_view(base + start, length)) - (base + end));
    std::memmove(base + start, base + end, folded);
    out.resize(start + folded);
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
