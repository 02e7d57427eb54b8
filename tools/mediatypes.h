#ifndef KN_TOOLS_MEDIATYPES_H
#define KN_TOOLS_MEDIATYPES_H

// The tool's small table of file name extensions and the media types they stand for, read
// both ways: a name for a part that has none, a media type for a file.

#include <foundation/KNCString.h>

#include <string_view>

// The extension with its dot (".pdf") for a lower-case media type; ".bin" for one not in the
// table.
KNCString extensionFor(std::string_view mediaType);

// The media type for a file name by its extension, ignoring case;
// "application/octet-stream" for one not in the table.
KNCString mediaTypeForFile(std::string_view filename);

#endif
