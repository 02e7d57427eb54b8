#ifndef KN_TOOLS_PARTPATH_H
#define KN_TOOLS_PARTPATH_H

// Where a part sits in a message: the part numbers from the outermost multipart inwards,
// written "1.2" (1-based, as `knmime tree` prints them), and "." for the message itself.

#include <mime/KNMime.h>

#include <cstddef>
#include <vector>

// The 0-based part index at each level; empty for the message itself.
using PartPath = std::vector<std::size_t>;

// Reads a path as the user writes it; UsageError for anything else.
PartPath parsePartPath(const KNCString& text);

// The path as the user writes it: "1.2", or "." for the message.
KNCString formatPartPath(const PartPath& path);

// The path in a sentence: "part 7.3", or "the message".
KNCString describePart(const PartPath& path);

#endif
