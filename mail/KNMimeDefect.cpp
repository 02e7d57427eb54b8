#include <mail/KNMimeDefect.h>

const char* KNMimeDefect::kindName(Kind kind) noexcept
{
    switch (kind) {
    case Kind::ByteOrderMark: return "byte-order-mark";
    case Kind::MboxFromLine: return "mbox-from-line";
    case Kind::LeadingBlankLines: return "leading-blank-lines";
    case Kind::MixedLineEnds: return "mixed-line-ends";
    case Kind::BareCarriageReturn: return "bare-carriage-return";
    case Kind::HeaderWithoutColon: return "header-without-colon";
    case Kind::ContinuationWithoutHeader: return "continuation-without-header";
    case Kind::MisplacedFromLine: return "misplaced-from-line";
    case Kind::InvalidHeaderName: return "invalid-header-name";
    case Kind::BlankBeforeColon: return "blank-before-colon";
    case Kind::InvalidHeaderValue: return "invalid-header-value";
    case Kind::InvalidContentType: return "invalid-content-type";
    case Kind::InvalidParameter: return "invalid-parameter";
    case Kind::ExtendedBoundary: return "extended-boundary";
    case Kind::MissingBoundary: return "missing-boundary";
    case Kind::UnusedBoundary: return "unused-boundary";
    case Kind::MissingCloseDelimiter: return "missing-close-delimiter";
    case Kind::DoubledDelimiter: return "doubled-delimiter";
    case Kind::EpilogueDropped: return "epilogue-dropped";
    case Kind::NestingTooDeep: return "nesting-too-deep";
    case Kind::UndecodableMessage: return "undecodable-message";
    }
    return "unknown";
}

bool operator==(const KNMimeDefect& a, const KNMimeDefect& b)
{
    return a.kind == b.kind && a.path == b.path && a.offset == b.offset && a.text == b.text;
}
