#include <mail/internal/KNMimeStoredText.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

struct LineEndCount {
    std::size_t lineFeeds = 0;       // every LF
    std::size_t pairs = 0;           // LFs preceded by CR
    std::size_t carriageReturns = 0; // every CR
};

LineEndCount countLineEnds(std::string_view s)
{
    LineEndCount count;
    const char* const begin = s.data();
    const char* const end = begin + s.size();
    for (const char* p = begin; (p = static_cast<const char*>(std::memchr(p, '\n', end - p))) != nullptr; ++p) {
        ++count.lineFeeds;
        count.pairs += p != begin && p[-1] == '\r';
    }
    for (const char* p = begin; (p = static_cast<const char*>(std::memchr(p, '\r', end - p))) != nullptr; ++p)
        ++count.carriageReturns;
    return count;
}

} // namespace

KNMimeStoredText::KNMimeStoredText(std::string_view input)
{
    if (input.substr(0, byteOrderMark.size()) == byteOrderMark) {
        byteOrderMark_ = true;
        base_ = byteOrderMark.size();
        input.remove_prefix(base_);
    }
    const LineEndCount count = countLineEnds(input);
    if (count.lineFeeds == count.pairs && count.carriageReturns == count.pairs)
        text_ = input;
    else
        normalise(input, count.carriageReturns > count.pairs);
}

// One pass: copy the runs between line-end bytes, adding the byte a bare CR or LF lacks.
// Without bare CRs only LFs need looking at, which memchr finds fast.
void KNMimeStoredText::normalise(std::string_view input, bool bareCarriageReturns)
{
    storage_.reserve(input.size() + input.size() / 16 + 2);
    const auto nextLineEnd = [&](std::size_t from) {
        return bareCarriageReturns ? input.find_first_of("\r\n", from) : input.find('\n', from);
    };
    bool sawCrlf = false;
    std::size_t firstBareLF = none;
    std::size_t i = 0;
    const std::size_t n = input.size();
    while (i < n) {
        const std::size_t run = nextLineEnd(i);
        if (run == std::string_view::npos) {
            storage_.append(input, i, n - i);
            break;
        }
        if (input[run] == '\n' && run > i && input[run - 1] == '\r') { // CRLF found at its LF
            storage_.append(input, i, run + 1 - i);
            sawCrlf = true;
            i = run + 1;
            continue;
        }
        storage_.append(input, i, run - i);
        if (input[run] == '\r' && run + 1 < n && input[run + 1] == '\n') {
            storage_ += "\r\n";
            sawCrlf = true;
            i = run + 2;
            continue;
        }
        if (input[run] == '\r') {
            if (firstBareCR_ == none)
                firstBareCR_ = base_ + run;
            storage_ += '\r';
            inserted_.push_back(storage_.size());
            storage_ += '\n';
        } else {
            if (firstBareLF == none)
                firstBareLF = base_ + run;
            inserted_.push_back(storage_.size());
            storage_ += "\r\n";
        }
        i = run + 1;
    }
    if (sawCrlf)
        mixedLF_ = firstBareLF;
    text_ = storage_;
}

std::size_t KNMimeStoredText::inputOffset(std::size_t pos) const
{
    const auto added = std::lower_bound(inserted_.begin(), inserted_.end(), pos) - inserted_.begin();
    return base_ + pos - static_cast<std::size_t>(added);
}
