#ifndef KN_MAIL_INTERNAL_KNMIMESTOREDTEXT_H
#define KN_MAIL_INTERNAL_KNMIMESTOREDTEXT_H

// A message as stored, seen with CRLF line ends throughout: bare LF and bare CR become CRLF
// and a leading UTF-8 byte-order mark is dropped, in one pass and only when needed (CRLF
// text is used in place). Positions in the text map back to offsets in the input. Not
// installed: internal to the reader.

#include <foundation/KNCString.h>

#include <cstddef>
#include <string_view>
#include <vector>

class KNMimeStoredText {
public:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    // `input` must outlive this object when it already has CRLF line ends.
    explicit KNMimeStoredText(std::string_view input);
    KNMimeStoredText(const KNMimeStoredText&) = delete;
    KNMimeStoredText& operator=(const KNMimeStoredText&) = delete;

    std::string_view text() const { return text_; }
    // The input offset of the byte at `pos` in text(); an inserted line-end byte maps to
    // the input byte that follows it.
    std::size_t inputOffset(std::size_t pos) const;

    bool hadByteOrderMark() const { return byteOrderMark_; }
    // Input offsets of the first bare CR, and of the first bare LF when the input also has
    // CRLF line ends; `none` when there is no such byte.
    std::size_t firstBareCarriageReturn() const { return firstBareCR_; }
    std::size_t firstMixedLineFeed() const { return mixedLF_; }

private:
    void normalise(std::string_view input, bool bareCarriageReturns);

    std::string_view text_;
    KNCString storage_;
    std::vector<std::size_t> inserted_; // positions in text_ of the bytes added, ascending
    std::size_t base_ = 0;              // input bytes dropped before text_ starts
    bool byteOrderMark_ = false;
    std::size_t firstBareCR_ = none;
    std::size_t mixedLF_ = none;
};

#endif
