#ifndef KN_TOOLS_PARTINFO_H
#define KN_TOOLS_PARTINFO_H

// What the tool shows about a part and a message, read through the forgiving mail layer:
// names and header values come out in UTF-8, and nothing here throws for odd content.

#include <mail/KNMimeDefect.h>
#include <mime/KNMimePart.h>

#include <array>
#include <cstddef>
#include <optional>

// What tree prints about one part.
struct PartSummary {
    KNCString type;                       // lower-case "type/subtype"; text/plain without one
    std::optional<KNCString> charset;     // the Content-Type charset parameter
    std::optional<KNCString> encoding;    // the Content-Transfer-Encoding, lower case
    std::optional<KNCString> disposition; // "inline", "attachment", ...
    std::optional<KNCString> filename;    // decoded to UTF-8 (RFC 2231 or encoded words)
    std::optional<std::size_t> size;      // a leaf's decoded body size; none for a multipart
};

// The summary of `part`; the size (which decodes the body) only when `withSize` is true.
PartSummary summarize(const KNMimePart& part, bool withSize = true);

// The header fields of the summary above a tree, in the order printed.
extern const char* const SummaryHeaders[4];

// The values of the first From, To, Date and Subject headers of `message` decoded to UTF-8,
// in the order of SummaryHeaders; nothing for a header the message lacks.
std::array<std::optional<KNCString>, 4> summaryHeaders(const KNMimePart& message);

// A header line "Label: value" with the value decoded for reading: encoded words, RFC 2231
// parameters and charsets give UTF-8.
KNCString decodedHeaderLine(const KNMimeHeader& header);

// One defect as one line: "defect in part 2: KIND at byte OFFSET: TEXT".
KNCString describeDefect(const KNMimeDefect& defect);

#endif
