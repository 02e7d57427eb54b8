#include <mail/internal/KNMimeStoredText.h>

#include <algorithm>
#include <cstring>

#if defined(__SSE2__) && defined(__GNUC__)
#include <emmintrin.h>
#endif

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// Loops the compiler turns into vector code get an AVX2 version too, picked at load time.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && defined(__ELF__)
#define KN_VECTOR_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define KN_VECTOR_CLONES
#endif

// How many times `c` occurs in [b, b + n): byte-wide counts over fixed blocks short enough not
// to overflow, which vectorise far better than a count per byte in a wide integer.
KN_VECTOR_CLONES
std::size_t countByte(const char* b, std::size_t n, char c)
{
    constexpr std::size_t block = 192; // below 256, and a whole number of vectors
    std::size_t total = 0;
    std::size_t from = 0;
    for (; from + block <= n; from += block) {
        unsigned char count = 0;
        for (std::size_t i = 0; i < block; ++i)
            count = static_cast<unsigned char>(count + (b[from + i] == c ? 1 : 0));
        total += count;
    }
    for (; from < n; ++from)
        total += b[from] == c ? 1 : 0;
    return total;
}

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
// CR, is a position where one stands without the other. ORs over the bytes with no branch in
// the loop, which the compiler turns into vector code; the dashes come almost for free.
KN_VECTOR_CLONES
bool KNMimeStoredText::isCrlfBetween(std::size_t begin, std::size_t end, bool* sawDash) const
{
    const auto* const b = reinterpret_cast<const unsigned char*>(text_.data());
    const std::size_t n = text_.size();
    end = std::min(end, n);
    if (sawDash != nullptr)
        *sawDash = false;
    if (begin >= end)
        return true;
    if ((begin > 0 && b[begin] == '\n' && b[begin - 1] != '\r') || (begin == 0 && b[0] == '\n'))
        return false; // an LF at the start of the range pairs with the byte before it
    const std::size_t pairsEnd = std::min(end, n - 1);
    constexpr std::size_t block = 1 << 12; // stop soon after the first bad byte
    unsigned char dash = end > pairsEnd && b[n - 1] == '-' ? 1 : 0;
    for (std::size_t from = begin; from < pairsEnd; from += block) {
        const std::size_t to = std::min(pairsEnd, from + block);
        unsigned char bad = 0;
#pragma GCC unroll 4
        for (std::size_t i = from; i < to; ++i) {
            // All-ones masks, as the vector compares give them, spare a mask-to-1 step.
            bad |= static_cast<unsigned char>((b[i] == '\r' ? 0xff : 0) ^ (b[i + 1] == '\n' ? 0xff : 0));
            dash |= static_cast<unsigned char>(b[i] == '-' ? 0xff : 0);
        }
        if (bad != 0)
            return false;
    }
    if (sawDash != nullptr)
        *sawDash = dash != 0;
    return !(end == n && b[n - 1] == '\r');
}

// One pass: copy the runs between line-end bytes, adding the byte a bare CR or LF lacks, into
// a buffer sized for the result (each line-end byte adds at most one). Without bare CRs only
// LFs need looking at, which memchr finds fast.
void KNMimeStoredText::normalise(std::string_view input, bool bareCarriageReturns)
{
    const char* const in = input.data();
    const std::size_t n = input.size();
    std::size_t added = countByte(in, n, '\n');
    if (bareCarriageReturns)
        added += countByte(in, n, '\r');
    // Not a string: one that size would be zeroed first, a second pass over fresh memory.
    storage_.reset(new char[n + added + 1]);
    char* const begin = storage_.get();
    char* out = begin;
    const auto copy = [&out](const char* from, std::size_t count) {
        std::memcpy(out, from, count);
        out += count;
    };
    const auto nextLineEnd = [&](std::size_t from) -> std::size_t {
        if (bareCarriageReturns)
            return std::min(input.find_first_of("\r\n", from), n);
        const void* lf = std::memchr(in + from, '\n', n - from);
        return lf == nullptr ? n : static_cast<std::size_t>(static_cast<const char*>(lf) - in);
    };
    bool sawCrlf = false;
    std::size_t firstBareLF = none;
    std::size_t i = 0;
    while (i < n) {
        const std::size_t run = nextLineEnd(i);
        if (run == n) {
            copy(in + i, n - i);
            break;
        }
        if (in[run] == '\n' && run > i && in[run - 1] == '\r') { // CRLF found at its LF
            copy(in + i, run + 1 - i);
            sawCrlf = true;
            i = run + 1;
            continue;
        }
        copy(in + i, run - i);
        if (in[run] == '\r' && run + 1 < n && in[run + 1] == '\n') {
            copy("\r\n", 2);
            sawCrlf = true;
            i = run + 2;
            continue;
        }
        if (in[run] == '\r') {
            if (firstBareCR_ == none)
                firstBareCR_ = base_ + run;
        } else if (firstBareLF == none) {
            firstBareLF = base_ + run;
        }
        // The CR stands where the input byte was when it was an LF, and the LF is the added
        // byte when it was a CR.
        inserted_.push_back(static_cast<std::size_t>(out - begin) + (in[run] == '\r' ? 1 : 0));
        copy("\r\n", 2);
        i = run + 1;
    }
    if (sawCrlf)
        mixedLF_ = firstBareLF;
    text_ = std::string_view(begin, static_cast<std::size_t>(out - begin));
}

// Sixteen bytes at a time where SSE2 is there (every x86-64): each block is stored whole, and
// at its first LF a CR goes in and the next block starts after that LF. Lines of mail are
// short, so this beats a memchr and an append per line by far.
KNCString KNMimeStoredText::withCrlf(std::string_view text)
{
    const std::size_t size = text.size() + countByte(text.data(), text.size(), '\n');
    KNCString out(size, '\0');
    const char* in = text.data();
    const char* const end = in + text.size();
    char* to = &out[0];
#if defined(__SSE2__) && defined(__GNUC__)
    // A block stored at `to` ends no later than the bytes still to come would.
    const __m128i lineFeed = _mm_set1_epi8('\n');
    while (end - in >= 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), block);
        const unsigned lineFeeds = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(block, lineFeed)));
        if (lineFeeds == 0) {
            in += 16;
            to += 16;
            continue;
        }
        const unsigned k = static_cast<unsigned>(__builtin_ctz(lineFeeds));
        to[k] = '\r';
        to[k + 1] = '\n';
        in += k + 1;
        to += k + 2;
    }
#endif
    for (; in < end; ++in) {
        if (*in == '\n')
            *to++ = '\r';
        *to++ = *in;
    }
    return out;
}

// The same look for text read with bare LF line ends: any CR there spoils it.
KN_VECTOR_CLONES
bool KNMimeStoredText::isBareLfBetween(std::size_t begin, std::size_t end, bool* sawDash) const
{
    const auto* const b = reinterpret_cast<const unsigned char*>(text_.data());
    end = std::min(end, text_.size());
    if (sawDash != nullptr)
        *sawDash = false;
    unsigned char dash = 0;
    constexpr std::size_t block = 1 << 12; // stop soon after the first CR
    for (std::size_t from = begin; from < end; from += block) {
        const std::size_t to = std::min(end, from + block);
        unsigned char bad = 0;
#pragma GCC unroll 4
        for (std::size_t i = from; i < to; ++i) {
            bad |= static_cast<unsigned char>(b[i] == '\r' ? 0xff : 0);
            dash |= static_cast<unsigned char>(b[i] == '-' ? 0xff : 0);
        }
        if (bad != 0)
            return false;
    }
    if (sawDash != nullptr)
        *sawDash = dash != 0;
    return true;
}

std::size_t KNMimeStoredText::inputOffset(std::size_t pos) const
{
    const auto added = std::lower_bound(inserted_.begin(), inserted_.end(), pos) - inserted_.begin();
    return base_ + pos - static_cast<std::size_t>(added);
}
