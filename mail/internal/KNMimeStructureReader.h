#ifndef KN_MAIL_INTERNAL_KNMIMESTRUCTUREREADER_H
#define KN_MAIL_INTERNAL_KNMIMESTRUCTUREREADER_H

// The structure of one message read in a single pass over its CRLF text: header blocks,
// delimiter lines matched against every open multipart (innermost first), leaves, and the
// messages attached in message/rfc822 leaves, read by a nested reader. Not installed:
// internal to KNMimeReader.

#include <foundation/KNCString.h>
#include <mail/KNMimeDefect.h>
#include <mail/KNMimeReadResult.h>
#include <mime/KNMimeHeader.h>
#include <mime/KNMimePart.h>

#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

class KNMimeStoredText;

class KNMimeStructureReader {
public:
    // Where the entities and defects of a whole read go, attached messages included.
    struct Output {
        std::vector<KNMimeReadResult::Entity> entities;
        std::vector<KNMimeDefect> defects;
    };
    // Maps a position in the text to an offset in the reader's input.
    using OffsetMap = std::function<std::size_t(std::size_t)>;

    // `levels` counts the multiparts and attached messages around `text`; `path` is the
    // path of the message `text` holds.
    KNMimeStructureReader(std::string_view text, OffsetMap toInput, KNCString path, unsigned levels,
                          bool openAttachedMessages, Output& output);

    // Reads the message from `start` (after any prefix the caller skipped) and returns it.
    KNMimePart read(std::size_t start);

    // Reads a whole stored text, line ends and prefixes included, as message `path`. Text
    // whose lines all end in CRLF, or all in a bare LF, is read in place, its line ends
    // checked as the reading goes; other text is read from a CRLF copy.
    static KNMimePart readStored(std::string_view stored, const OffsetMap& toInput, const KNCString& path,
                                 unsigned levels, bool openAttachedMessages, Output& output);

private:
    struct Frame;
    struct NeedsCrlfCopy {}; // thrown by ensureChecked: read again from a CRLF copy
    struct Leaf;
    struct Head {
        std::vector<KNMimeHeader> headers;
        std::size_t contentType = static_cast<std::size_t>(-1); // index of the first Content-Type
        std::size_t bodyStart = 0;
        bool doubledDelimiter = false;
    };
    struct Delimiter {
        std::size_t frame = 0;
        bool close = false;
    };

    // How the line ends of a text are read: CRLF (a copy made so), or CRLF or bare LF
    // checked as the reading goes.
    enum class LineEnds { Crlf, CheckedCrlf, CheckedLineFeeds };

    static KNMimePart readText(const KNMimeStoredText& text, LineEnds lineEnds, const OffsetMap& toInput,
                               const KNCString& path, unsigned levels, bool openAttachedMessages, Output& output);
    void ensureChecked(std::size_t upTo);
    bool lineEndsHold(std::size_t begin, std::size_t end, bool* sawDash) const;
    Head readHead(std::size_t pos, const KNCString& path, bool atRoot);
    void addField(std::size_t start, std::size_t end, const KNCString& path, Head& head);
    bool matchDelimiter(std::size_t pos, std::size_t lineEnd, Delimiter& match) const;
    std::size_t findDelimiterLine(std::size_t from, Delimiter& match);
    bool reusesEnclosingBoundary(std::size_t frame) const;
    void beginEntity(Head head, const KNCString& path, std::size_t start);
    void finishLeaf(std::size_t end);
    void finishFrame(std::size_t end);
    void deliver(const KNMimePart& part, std::size_t entity, Frame* parent);
    Frame* enclosing(std::size_t frame);
    void openAttachedMessage(const KNMimePart& leaf, std::string_view body, std::size_t bodyStart, const KNCString& path);
    KNCString childPath() const;
    std::size_t lineEnd(std::size_t pos) const;
    std::size_t nextLine(std::size_t pos) const;
    std::size_t lineBreakSize() const { return lineFeeds_ ? 1 : 2; }
    KNCString copyOut(std::string_view text) const;
    void report(KNMimeDefect::Kind kind, const KNCString& path, std::size_t pos, const KNCString& text);

    std::string_view text_;
    OffsetMap toInput_;
    KNCString path_;
    unsigned levels_;
    bool openAttachedMessages_;
    Output& output_;
    std::vector<Frame> frames_;
    std::vector<Leaf> leaf_; // at most one leaf whose body is still open
    const KNMimeStoredText* unchecked_ = nullptr; // text whose line ends are checked as read
    std::size_t checked_ = 0;                     // ... up to here
    bool lineFeeds_ = false;                      // lines end in a bare LF, made CRLF when copied out
    KNMimePart message_;
};

#endif
