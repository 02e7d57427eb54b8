#ifndef KN_MAIL_KNMIMEHEADERTEXT_H
#define KN_MAIL_KNMIMEHEADERTEXT_H

// Header values for display and for writing: RFC 2047 encoded words decoded to UTF-8 the
// forgiving way, and UTF-8 text encoded into words that never split a character.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>

#include <string_view>

/// Decodes whole header values to UTF-8 and encodes UTF-8 text for headers. Decoding never
/// throws: what cannot be decoded is kept as written.
class KNMIME_EXPORT KNMimeHeaderText {
public:
    KNMimeHeaderText() = delete;

    /// A decoded value and what happened while decoding it.
    struct Decoded {
        /// The value in UTF-8, unfolded.
        KNCString text;
        /// True when some bytes did not convert and became U+FFFD.
        bool lossy = false;
        /// True when an encoded word named a charset that is not known.
        bool unknownCharset = false;
        /// True when something that looked like an encoded word was malformed and kept as text.
        bool malformed = false;
    };

    /// `value` (a raw header value, possibly folded) in UTF-8: line breaks are unfolded;
    /// encoded words in B and Q are decoded wherever they stand (also inside quotes, as some
    /// mailers write them); white space between two encoded words is dropped; consecutive
    /// words in one charset are converted together so a character split across them is
    /// rejoined; a malformed word is kept as written; raw 8-bit text is read as UTF-8 when
    /// valid, else as windows-1252.
    static Decoded decodeWithReport(std::string_view value);
    /// The text of decodeWithReport.
    static KNCString decode(std::string_view value);

    /// A UTF-8 unstructured value (Subject, ...) ready for a header: returned unchanged when it
    /// is printable ASCII without "=?"; otherwise every run of words that needs it becomes
    /// UTF-8 encoded words of at most 75 characters, separated by one blank, each holding whole
    /// characters only. decode() gives the text back.
    static KNCString encode(std::string_view utf8);
    /// A UTF-8 display name ready for an address header: unchanged when it is atoms separated
    /// by single blanks, a quoted string when it is other printable ASCII, encoded words
    /// otherwise. Reading it back as a phrase gives the text back.
    static KNCString encodePhrase(std::string_view utf8);
    /// `utf8` as UTF-8 encoded words only (Q when mostly ASCII, else B), safe in a phrase.
    static KNCString encodeWords(std::string_view utf8);
};

#endif
