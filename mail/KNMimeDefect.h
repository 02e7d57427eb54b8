#ifndef KN_MAIL_KNMIMEDEFECT_H
#define KN_MAIL_KNMIMEDEFECT_H

/// @file
/// One flaw the forgiving reader found in a message, and where.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>

#include <cstddef>

/// One flaw the forgiving reader found in a message and read past: what kind, in which part,
/// at which byte of the input, and a one-line description for people.
struct KNMIME_EXPORT KNMimeDefect {
    /// The kinds of flaw; each has a stable name (kindName) for scripts and tests.
    enum class Kind {
        ByteOrderMark,            ///< "byte-order-mark": a UTF-8 byte-order mark before the headers, dropped
        MboxFromLine,             ///< "mbox-from-line": a leading mbox "From " line, dropped
        LeadingBlankLines,        ///< "leading-blank-lines": blank lines before the first header, dropped
        MixedLineEnds,            ///< "mixed-line-ends": CRLF and bare LF line ends in one message
        BareCarriageReturn,       ///< "bare-carriage-return": a CR not followed by LF, read as a line end
        HeaderWithoutColon,       ///< "header-without-colon": a line in the header block without a colon; the body starts there
        ContinuationWithoutHeader,///< "continuation-without-header": a folded line with no header to continue, dropped
        MisplacedFromLine,        ///< "misplaced-from-line": an mbox "From " line inside a header block, dropped
        InvalidHeaderName,        ///< "invalid-header-name": a header whose name cannot be printed, dropped
        BlankBeforeColon,         ///< "blank-before-colon": blanks between a header name and its colon, removed
        InvalidHeaderValue,       ///< "invalid-header-value": a value its header type refuses, kept as plain text
        InvalidContentType,       ///< "invalid-content-type": an unreadable Content-Type, kept as text and read as text/plain
        InvalidParameter,         ///< "invalid-parameter": a parameter that cannot be read, dropped (the others kept)
        ExtendedBoundary,         ///< "extended-boundary": the boundary given only in the extended (charset'lang') form
        MissingBoundary,          ///< "missing-boundary": a multipart without a boundary, read as one leaf
        UnusedBoundary,           ///< "unused-boundary": a multipart whose boundary never starts a line, read as one leaf
        MissingCloseDelimiter,    ///< "missing-close-delimiter": a multipart that ends without its closing delimiter
        DoubledDelimiter,         ///< "doubled-delimiter": a delimiter line right after another, the empty part skipped
        EpilogueDropped,          ///< "epilogue-dropped": text after a closing delimiter, not kept
        NestingTooDeep,           ///< "nesting-too-deep": nesting past the limit, the deeper text kept as a leaf's body
        UndecodableMessage,       ///< "undecodable-message": an attached message in an unknown transfer encoding, read as stored
    };

    Kind kind;          ///< what went wrong
    KNCString path;     ///< the part it happened in: "" the message, "1" its first part, "1.2" ...
    std::size_t offset; ///< byte offset in the input as given to the reader
    KNCString text;     ///< one line for people, without a line end

    /// The stable name of `kind`, such as "missing-close-delimiter".
    static const char* kindName(Kind kind) noexcept;
    /// The stable name of this defect's kind.
    const char* kindName() const noexcept { return kindName(kind); }
};

/// Equal when kind, path, offset and text are equal.
KNMIME_EXPORT bool operator==(const KNMimeDefect& a, const KNMimeDefect& b);

#endif
