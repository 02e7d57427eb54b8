#include <mail/internal/KNMimeStoredText.h>

#include <algorithm>

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

} // namespace

KNMimeStoredText::KNMimeStoredText(std::string_view input, bool makeCrlf)
{
    if (input.substr(0, byteOrderMark.size()) == byteOrderMark) {
        byteOrderMark_ = true;
        base_ = byteOrderMark.size();
        input.remove_prefix(base_);
    }
    if (makeCrlf)
        normalise(input, input.find('\r') != std::string_view::npos);
    else
        text_ = input;
}

// A CR at i and an LF at i + 1 go together: a CR not followed by an LF, or an LF not after a
// CR, is a position where one stands without the other. An OR over the bytes with no branch
// in the loop, which the compiler turns into vector code.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && defined(__ELF__)
__attribute__((target_clones("avx2", "default")))
#endif
bool KNMimeStoredText::isCrlfBetween(std::size_t begin, std::size_t end) const
{
    const auto* const b = reinterpret_cast<const unsigned char*>(text_.data());
    const std::size_t n = text_.size();
    end = std::min(end, n);
    if (begin >= end)
        return true;
    if ((begin > 0 && b[begin] == '\n' && b[begin - 1] != '\r') || (begin == 0 && b[0] == '\n'))
        return false; // an LF at the start of the range pairs with the byte before it
    const std::size_t pairsEnd = std::min(end, n - 1);
    constexpr std::size_t block = 1 << 12; // stop soon after the first bad byte
    for (std::size_t from = begin; from < pairsEnd; from += block) {
        const std::size_t to = std::min(pairsEnd, from + block);
        unsigned char bad = 0;
        for (std::size_t i = from; i < to; ++i)
            bad |= static_cast<unsigned char>((b[i] == '\r') ^ (b[i + 1] == '\n'));
        if (bad != 0)
            return false;
    }
    return !(end == n && b[n - 1] == '\r');
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
