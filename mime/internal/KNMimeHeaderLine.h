#ifndef KN_MIME_INTERNAL_KNMIMEHEADERLINE_H
#define KN_MIME_INTERNAL_KNMIMEHEADERLINE_H

// Parsing one header line from a view of a larger text, for the entity parser: the same
// reading as KNMimeHeader::fromString on a general header, without first copying the line
// or building a throwaway handle. Not installed: internal to the library.

#include <mime/KNMimeHeader.h>

#include <string_view>

namespace KNMimeHeaderLine {

// A new header with the line's cleaned label, the body the factory makes for it, and the
// unfolded value read into that body. MISSING_HEADER_SEPARATOR without a colon outside
// quotes and comments; the body's own errors for a value it refuses.
KNMimeHeader parse(std::string_view line);

} // namespace KNMimeHeaderLine

#endif
