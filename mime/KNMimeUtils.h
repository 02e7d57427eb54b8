#ifndef KN_MIME_KNMIMEUTILS_H
#define KN_MIME_KNMIMEUTILS_H

/// @class KNMimeUtils
/// The text utilities of MIME: lexical helpers for header text, the body transfer
/// encodings (base64, quoted-printable) and encoded words in header values.
/// Static members only; every function is pure and safe to call from any thread.

#include <foundation/KNCString.h>
#include <foundation/KNCStringConstant.h>
#include <foundation/KNExport.h>

#include <cstddef>

class KNMIME_EXPORT KNMimeUtils {
public:
    KNMimeUtils() = delete;

    /// @name Encoding names understood by encode() and decode()
    ///@{
    static constexpr KNCStringConstant QuotedPrintable{"quoted-printable"}; ///< "quoted-printable"
    static constexpr KNCStringConstant Base64{"base64"}; ///< "base64"
    static constexpr KNCStringConstant SevenBit{"7bit"}; ///< "7bit"
    static constexpr KNCStringConstant EightBit{"8bit"}; ///< "8bit"
    static constexpr KNCStringConstant Binary{"binary"}; ///< "binary"
    ///@}

    /// @name Lexical helpers
    ///@{

    /// Position of the first `delim` outside quoted strings and (nested) comments, or npos.
    static std::size_t findDelimiter(const KNCString& text, char delim);
    /// True for a non-empty text free of blanks, controls, DEL and ()<>@,;:\"/[]?=.
    static bool isToken(const KNCString& text);
    /// Drops comments, collapses white space, removes line breaks inside quoted strings;
    /// with `unquote`, also removes the quotes and the backslashes of quoted pairs.
    static KNCString cleanToken(const KNCString& text, bool unquote);
    /// The text in double quotes, with '"' and '\' escaped by a backslash.
    static KNCString quoteAndEscape(const KNCString& text);
    /// Removes folding line breaks (CR LF before a blank or tab) and trims white space.
    static KNCString unfoldAndTrim(const KNCString& text);
    /// Breaks lines longer than 78 characters at blanks or tabs with CR LF.
    static KNCString fold(const KNCString& text);
    /// Turns every CR LF pair, lone CR and lone LF into `delim`.
    static KNCString replaceLineDelimiter(const KNCString& text, const KNCString& delim);
    /// Cuts a header value into plain runs and (undecoded) encoded words.
    static KNCStringList tokenizeHeader(const KNCString& text, bool commentAware);
    /// A new multipart boundary "_=_next_part_<n>_=_", n strictly increasing in the process.
    static KNCString getUniqueBoundary();

    ///@}

    /// @name Body transfer encodings
    ///@{

    /// The base64 text of `data`: each full line of 72 characters is followed by CR LF, a
    /// shorter last line is not.
    static KNCString encodeBase64(const KNCString& data);
    /// Throws KNMimeParseError (INVALID_BASE64_CHAR) on a byte outside the alphabet.
    static KNCString decodeBase64(const KNCString& text);
    /// The quoted-printable text of `data`; long lines get soft line breaks ('=' CR LF).
    static KNCString encodeQuotedPrintable(const KNCString& data);
    /// The bytes a quoted-printable text stands for; with `stripTrailingWhitespace`, blanks
    /// at the ends of the decoded lines are dropped.
    static KNCString decodeQuotedPrintable(const KNCString& text, bool stripTrailingWhitespace);
    /// Dispatch by encoding name, ignoring case; KNMimeError (UNKNOWN_ENCODING) otherwise.
    static KNCString encode(const KNCString& data, const KNCString& encoding);
    /// Decodes `text` with the named encoding, ignoring case; KNMimeError (UNKNOWN_ENCODING)
    /// for a name it does not know.
    static KNCString decode(const KNCString& text, const KNCString& encoding);

    ///@}

    /// @name Encoded words in header values
    ///@{

    /// One or more encoded words of at most 75 characters, separated by one blank.
    static KNCString headerEncode(const KNCString& text, const KNCString& charset, const KNCString& encoding);
    /// The B (base64) body of one encoded word for a prefix of `text` fitting `maxLength`.
    static KNCString headerEncodeB(const KNCString& text, std::size_t maxLength, std::size_t& consumed);
    /// The Q body of one encoded word for a prefix of `text` fitting `maxLength`.
    static KNCString headerEncodeQ(const KNCString& text, std::size_t maxLength, std::size_t& consumed);
    /// Decodes the first encoded word in `text` and reports its charset ("US-ASCII" if none).
    static KNCString headerDecode(const KNCString& text, KNCString& charset);
    /// Decodes a Q-encoded word body.
    static KNCString headerDecodeQ(const KNCString& text);
    ///@}
};

#endif
