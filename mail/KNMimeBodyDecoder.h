#ifndef KN_MAIL_KNMIMEBODYDECODER_H
#define KN_MAIL_KNMIMEBODYDECODER_H

// Forgiving decoding of bodies by their Content-Transfer-Encoding, and the text of a part in
// UTF-8, reading what real mail holds rather than refusing it.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>

#include <string_view>

class KNMimePart;

/// Decodes part bodies the way mail readers do: base64 ignores characters outside the alphabet
/// and everything after the padding, quoted-printable keeps invalid escapes as they stand,
/// misspelled encoding names are understood and an unknown encoding gives the stored bytes.
/// Nothing here throws for bad input. The strict codecs are in KNMimeUtils.
class KNMIME_EXPORT KNMimeBodyDecoder {
public:
    KNMimeBodyDecoder() = delete;

    /// A Content-Transfer-Encoding as this class understands it.
    enum class Encoding {
        Identity,        ///< 7bit, 8bit, binary or none: the bytes as stored
        QuotedPrintable, ///< quoted-printable
        Base64,          ///< base64
        UUEncode,        ///< x-uuencode (and its spellings uuencode, x-uue, uue)
        Unknown          ///< any other name: the bytes as stored
    };

    /// How the line ends of a decoded text are given back.
    enum class LineEnds {
        AsStored, ///< untouched
        LF,       ///< every CR LF, lone CR and lone LF becomes LF
        CRLF      ///< every CR LF, lone CR and lone LF becomes CR LF
    };

    /// The decoded bytes of a body.
    struct Body {
        /// The decoded bytes.
        KNCString data;
        /// The encoding the body was decoded with.
        Encoding encoding = Encoding::Identity;
        /// True when the encoding name was not understood (the data is then the body as stored).
        bool unknownEncoding = false;
    };

    /// The text of a part in UTF-8.
    struct Text {
        /// The text, valid UTF-8.
        KNCString text;
        /// The canonical name of the charset the text was read in.
        KNCString charset;
        /// True when bytes did not convert and became U+FFFD.
        bool lossy = false;
        /// True when the charset was unknown (the text was then read as UTF-8).
        bool unknownCharset = false;
        /// True when the transfer encoding was unknown (the text was then the stored bytes).
        bool unknownEncoding = false;
    };

    /// The encoding a Content-Transfer-Encoding value names, ignoring case, blanks and
    /// comments; misspellings such as "7-bit", "8 bit", "quoted printable", "quoted_printable"
    /// and "base-64" are read as the names they mean. An empty value is Identity.
    static Encoding encodingByName(std::string_view name);

    /// Base64 decoded ignoring every character outside the alphabet and everything after
    /// the first padding; a final incomplete group gives the bytes it holds.
    static KNCString decodeBase64(std::string_view text);
    /// Quoted-printable decoded: "=" before a line end (blanks may come between) is a soft
    /// break, blanks at a line end are dropped, an "=" not followed by two hex digits is kept
    /// as it stands. Line ends stay as they are (CR LF, or a lone LF).
    static KNCString decodeQuotedPrintable(std::string_view text);
    /// The data of an x-uuencode body: the lines between "begin" and "end" (everything when
    /// there is no begin line); bad lines are skipped.
    static KNCString decodeUUEncode(std::string_view text);
    /// A body decoded by the encoding `encodingName` names.
    static Body decode(std::string_view body, std::string_view encodingName);
    /// The size of decode(body, encodingName).data, counted without decoding base64 or
    /// copying a body that needs no decoding.
    static std::size_t decodedSize(std::string_view body, std::string_view encodingName);
    /// The body of a leaf part decoded by its Content-Transfer-Encoding header (none means
    /// identity); a multipart gives its printed body as stored.
    static Body decode(const KNMimePart& part);
    /// The text of a part in UTF-8: the body decoded, then converted from the charset of the
    /// Content-Type (us-ascii when none is given), with line ends as asked.
    static Text text(const KNMimePart& part, LineEnds lineEnds = LineEnds::LF);
    /// Converts every CR LF, lone CR and lone LF of `text` as `lineEnds` asks.
    static KNCString convertLineEnds(std::string_view text, LineEnds lineEnds);
};

#endif
