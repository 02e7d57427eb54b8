#ifndef KN_MAIL_KNMIMEREADER_H
#define KN_MAIL_KNMIMEREADER_H

/// @file
/// The forgiving reader: opens a message exactly as it is stored and says what it repaired.

#include <foundation/KNCString.h>
#include <foundation/KNCatMsg.h>
#include <foundation/KNExport.h>
#include <mail/KNMimeReadResult.h>

#include <cstddef>
#include <string_view>

/// Reads one message as it is stored (LF, CRLF or mixed line ends, a leading mbox "From "
/// line or byte-order mark, the flaws real senders make) into an ordinary KNMimePart tree,
/// with the list of defects it read past. Where the strict KNMimePart::fromString refuses or
/// misreads mail, this reads it the way a receiver must: delimiters only at the start of a
/// line with transport padding allowed, headers repaired or dropped one by one, unreadable
/// multiparts kept as leaves, attached messages opened.
///
/// It never throws for malformed input. Its only failure is a documented limit: input longer
/// than getMaxInputSize() throws KNMimeError INPUT_TOO_LARGE. Nesting deeper than MaxNesting
/// levels (multiparts and attached messages together) is kept as the body of a leaf with a
/// "nesting-too-deep" defect. Line ends become CRLF so that the tree prints as valid mail;
/// every other body byte is kept. Reading takes time linear in the input.
///
/// Use it for mail from outside the program; KNMimePart::fromString is for text the program
/// controls and wants checked exactly. A reader holds only its settings: one reader may be
/// used from several threads at once.
class KNMIME_EXPORT KNMimeReader {
public:
    /// The default input limit, 1 GiB.
    static constexpr std::size_t DefaultMaxInputSize = std::size_t(1) << 30;
    /// The deepest nesting read as structure; deeper text stays in a leaf.
    static constexpr unsigned MaxNesting = 128;

    /// A reader with the default limit that opens attached messages.
    KNMimeReader() = default;

    /// The largest input read() accepts, in bytes.
    std::size_t getMaxInputSize() const { return maxInputSize_; }
    /// Sets the largest input read() accepts, in bytes.
    void setMaxInputSize(std::size_t bytes) { maxInputSize_ = bytes; }
    /// Whether message/rfc822 and message/global parts are read as nested messages.
    bool getOpenAttachedMessages() const { return openAttachedMessages_; }
    /// Turns the reading of attached messages on or off (on by default).
    void setOpenAttachedMessages(bool open) { openAttachedMessages_ = open; }

    /// Reads the bytes of one message exactly as stored. Throws only INPUT_TOO_LARGE.
    KNMimeReadResult read(std::string_view bytes) const;

private:
    std::size_t maxInputSize_ = DefaultMaxInputSize;
    bool openAttachedMessages_ = true;
};

/// "[INPUT_TOO_LARGE] The input of %zu bytes exceeds the reader's limit of %zu bytes"
KNMIME_EXPORT const KNCatMsg* knmime_INPUT_TOO_LARGE();

#endif
