#ifndef KN_MAIL_INTERNAL_KNMIMESTOREDTEXT_H
#define KN_MAIL_INTERNAL_KNMIMESTOREDTEXT_H

// A message as stored, a leading UTF-8 byte-order mark dropped, either used in place (for
// text the reader expects to have CRLF line ends, which it checks as it reads) or copied with
// every bare LF and bare CR made CRLF. Positions in the text map back to offsets in the input.
// Not installed: internal to the reader.

#include <foundation/KNCString.h>

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

class KNMimeStoredText {
public:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    // With `makeCrlf` false the text is `input` itself (less a byte-order mark), which must
    // then outlive this object; with it true, a copy whose line ends are all CRLF.
    KNMimeStoredText(std::string_view input, bool makeCrlf);
    KNMimeStoredText(const KNMimeStoredText&) = delete;
    KNMimeStoredText& operator=(const KNMimeStoredText&) = delete;

    std::string_view text() const { return text_; }
    // The input offset of the byte at `pos` in text(); an inserted line-end byte maps to
    // the input byte that follows it.
    std::size_t inputOffset(std::size_t pos) const;

    // Whether every CR in text() at positions [begin, end) is followed by an LF and every LF
    // there follows a CR (a byte at the edge of the range is paired with its neighbour
    // outside it). With `sawDash`, also tells whether a '-' stands there, which spares the
    // reader a second look at a block without one for delimiter lines.
    bool isCrlfBetween(std::size_t begin, std::size_t end, bool* sawDash = nullptr) const;
    // The same for text read with bare LF line ends: whether no CR stands in [begin, end).
    bool isBareLfBetween(std::size_t begin, std::size_t end, bool* sawDash = nullptr) const;

    // `text`, which holds no CR, with every LF made CRLF.
    static KNCString withCrlf(std::string_view text);

    bool hadByteOrderMark() const { return byteOrderMark_; }
    // Input offsets of the first bare CR, and of the first bare LF when the input also has
    // CRLF line ends; `none` when there is no such byte.
    std::size_t firstBareCarriageReturn() const { return firstBareCR_; }
    std::size_t firstMixedLineFeed() const { return mixedLF_; }

private:
    void normalise(std::string_view input, bool bareCarriageReturns);

    std::string_view text_;
    std::unique_ptr<char[]> storage_; // the copy, when one was made
    std::vector<std::size_t> inserted_; // positions in text_ of the bytes added, ascending
    std::size_t base_ = 0;              // input bytes dropped before text_ starts
    bool byteOrderMark_ = false;
    std::size_t firstBareCR_ = none;
    std::size_t mixedLF_ = none;
};

#endif
