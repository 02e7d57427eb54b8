#ifndef KN_TOOLS_FILES_H
#define KN_TOOLS_FILES_H

// Whole-file input and output in binary mode (MIME text keeps its CRLF line ends), with "-"
// standing for standard input or output. The library does no I/O; the tool does all of it here.

#include <foundation/KNCString.h>

// The bytes of the file `name`; std::runtime_error when it cannot be read.
KNCString readInput(const KNCString& name);

// Writes `bytes` to the file `name`, replacing it; std::runtime_error when that fails.
void writeOutput(const KNCString& name, const KNCString& bytes);

#endif
