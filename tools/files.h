#ifndef KN_TOOLS_FILES_H
#define KN_TOOLS_FILES_H

// Whole-file input and output in binary mode (MIME text keeps its CRLF line ends), with "-"
// standing for standard input or output. The library does no I/O; the tool does all of it here.

#include <foundation/KNCString.h>

#include <cstddef>
#include <string_view>

// The bytes of the file `name`; std::runtime_error when it cannot be read.
KNCString readInput(const KNCString& name);

// The bytes of an input file, mapped into memory when it is a regular file (no copy, which
// counts for a large mbox) and read otherwise; "-" is standard input.
class InputFile {
public:
    explicit InputFile(const KNCString& name);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    std::string_view bytes() const { return map_ ? std::string_view(static_cast<const char*>(map_), size_) : read_; }

private:
    void* map_ = nullptr;
    std::size_t size_ = 0;
    KNCString read_;
};

// Writes `bytes` to the file `name`, replacing it; std::runtime_error when that fails.
void writeOutput(const KNCString& name, const KNCString& bytes);

#endif
