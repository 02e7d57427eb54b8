#include <mime/KNMimeMultipartImp.h>

#include <foundation/KNMessage.h>
#include <foundation/KNxmsg.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeMessages.h>
#include <mime/KNMimeStringPartImp.h>
#include <mime/internal/KNMimeEntityText.h>
#include <mime/internal/KNMimeHeaderArena.h>

#include <new>
#include <unordered_set>
#include <utility>
#include <vector>

namespace {
// Room reserved per delimiter line when a printed size is estimated (boundaries stay
// below 70 characters).
constexpr std::size_t delimiterSizeGuess = 80;

// Multipart levels the printing, size guessing or comparing on this thread is inside. Those
// walk the tree by recursion, so a tree built deeper than parsing would build it is refused
// before the stack runs out.
thread_local unsigned nestingDepth = 0;

// One level of that recursion, for the lifetime of the object.
class NestingLevel {
public:
    NestingLevel()
    {
        if (nestingDepth >= KNMimeEntityText::MaxNesting)
            KNThrow(KNMimeError(KNMessage(knmime_NESTING_TOO_DEEP(), KNMimeEntityText::MaxNesting)));
        ++nestingDepth;
    }
    ~NestingLevel() { --nestingDepth; }
    NestingLevel(const NestingLevel&) = delete;
    NestingLevel& operator=(const NestingLevel&) = delete;
};
} // namespace

// The nested parts are let go here one at a time rather than by the list's destructor: a
// multipart whose last handle is about to go hands its own parts over first, so a chain of
// any length is torn down in a loop, not by one destructor call per level.
KNMimeMultipartImp::~KNMimeMultipartImp()
{
    std::vector<KNMimePart> pending;
    try {
        parts_.moveAllTo(pending);
        while (!pending.empty()) {
            const KNMimePart part = std::move(pending.back());
            pending.pop_back();
            auto* multipart = part.isEmpty() ? nullptr : dynamic_cast<KNMimeMultipartImp*>(part.body());
            if (multipart != nullptr && multipart->referenceCount() == 1)
                multipart->parts_.moveAllTo(pending);
        }
    } catch (const std::bad_alloc&) {
        // Out of memory for the list: what is left is released by the destructors.
    }
}

bool KNMimeMultipartImp::contains(const KNMimePartImp& target) const
{
    // A body held by a single handle is reachable by one path only, so only shared bodies
    // need remembering to visit each body once.
    std::vector<const KNMimeMultipartImp*> pending{this};
    std::unordered_set<const KNMimeMultipartImp*> seen;
    while (!pending.empty()) {
        const KNMimeMultipartImp* multipart = pending.back();
        pending.pop_back();
        if (multipart == &target)
            return true;
        for (const KNMimePart& part : multipart->parts_) {
            const auto* nested = part.isEmpty() ? nullptr : dynamic_cast<const KNMimeMultipartImp*>(part.body());
            if (nested != nullptr && (nested->referenceCount() == 1 || seen.insert(nested).second))
                pending.push_back(nested);
        }
    }
    return false;
}

void KNMimeMultipartImp::refuseCycle(const KNMimePart& part) const
{
    const auto* multipart = part.isEmpty() ? nullptr : dynamic_cast<const KNMimeMultipartImp*>(part.body());
    if (multipart != nullptr && multipart->contains(*this))
        KNThrow(KNMimeError(KNMessage(knmime_CYCLIC_PART())));
}

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
    const KNMimeHeaderArena::Scope headerMemory;
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
    const NestingLevel level;
    return preamble_ == other.preamble_ && parts_ == other.parts_;
}

KNMimePart KNMimeMultipartImp::getPart(std::size_t i) const
{
    return parts_.at(i);
}

void KNMimeMultipartImp::insertPart(const KNMimePart& part)
{
    refuseCycle(part);
    parts_.append(part);
}

void KNMimeMultipartImp::insertPartAt(std::size_t i, const KNMimePart& part)
{
    refuseCycle(part);
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
    const NestingLevel level;
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
    const NestingLevel level;
    std::size_t size = preamble_.size() + CRLF.size() + delimiterSizeGuess;
    // Only a guess: an empty handle among the parts is refused by the printing itself, after
    // the boundary has been checked.
    for (const KNMimePart& part : parts_)
        size += (part.isEmpty() ? 0 : part.body()->printedSizeHint()) + delimiterSizeGuess;
    return size;
}
