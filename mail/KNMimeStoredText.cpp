#include <mail/internal/KNMimeStoredText.h>

#include <algorithm>

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// Whether every LF follows a CR and every CR precedes an LF. An OR over the bytes with no
// branch in the loop, which the compiler turns into vector code: CRLF text is recognised at
// close to memory speed.
#if defined(__x86_64__) && defined(__GNUC__) && defined(__ELF__)
__attribute__((target_clones("avx2", "default")))
#endif
bool isAllCrlf(std::string_view s)
{
    const auto* const b = reinterpret_cast<const unsigned char*>(s.data());
    const std::size_t n = s.size();
    if (n == 0)
        return true;
    if (b[0] == '\n' || b[n - 1] == '\r')
        return false;
    // A CR at i and an LF at i + 1 go together: every CR is followed by an LF and every LF
    // (past the first byte) follows a CR exactly when no position has one without the other.
    constexpr std::size_t block = 1 << 12;
    for (std::size_t begin = 0; begin + 1 < n; begin += block) {
        const std::size_t end = std::min(n - 1, begin + block);
        unsigned char bad = 0;
        for (std::size_t i = begin; i < end; ++i)
            bad |= static_cast<unsigned char>((b[i] == '\r') ^ (b[i + 1] == '\n'));
        if (bad != 0)
            return false;
    }
    return true;
}

} // namespace

KNMimeStoredText::KNMimeStoredText(std::string_view input)
{
    if (input.substr(0, byteOrderMark.size()) == byteOrderMark) {
        byteOrderMark_ = true;
        base_ = byteOrderMark.size();
        input.remove_prefix(base_);
    }
    if (isAllCrlf(input))
        text_ = input;
    else
        normalise(input, input.find('\r') != std::string_view::npos);
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
