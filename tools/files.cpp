#include "files.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool isStandardStream(const KNCString& name)
{
    return name == "-";
}

[[noreturn]] void fail(const KNCString& what, const KNCString& name)
{
    const int error = errno;
    KNCString text = "cannot " + what + ' ' + name;
    if (error != 0)
        text += KNCString(": ") + std::strerror(error);
    throw std::runtime_error(text);
}

KNCString readAll(std::istream& in, const KNCString& name)
{
    KNCString bytes;
    char chunk[1 << 16];
    while (in.read(chunk, sizeof chunk) || in.gcount() > 0)
        bytes.append(chunk, static_cast<std::size_t>(in.gcount()));
    if (in.bad())
        fail("read", name);
    return bytes;
}

} // namespace

KNCString readInput(const KNCString& name)
{
    if (isStandardStream(name))
        return readAll(std::cin, "standard input");

    // A directory opens like a file here and then reads as empty; say what it is instead.
    std::error_code ignored;
    if (std::filesystem::is_directory(name, ignored))
        throw std::runtime_error("cannot read " + name + ": it is a directory");
    errno = 0;
    std::ifstream file(name, std::ios::binary);
    if (!file)
        fail("open", name);
    // A regular file is read into a buffer of its size, in one piece; what it holds beyond
    // that (a file still growing) is read in chunks after it.
    std::error_code unknown;
    const auto size = std::filesystem::file_size(name, unknown);
    KNCString bytes;
    if (!unknown && size > 0) {
        bytes.resize(static_cast<std::size_t>(size));
        file.read(bytes.data(), static_cast<std::streamsize>(size));
        bytes.resize(static_cast<std::size_t>(file.gcount()));
        if (file.bad())
            fail("read", name);
        if (bytes.size() < size)
            return bytes;
    }
    return bytes + readAll(file, name);
}

InputFile::InputFile(const KNCString& name)
{
    if (!isStandardStream(name)) {
        const int fd = ::open(name.c_str(), O_RDONLY);
        struct stat status {};
        if (fd >= 0 && ::fstat(fd, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0) {
            void* map = ::mmap(nullptr, static_cast<std::size_t>(status.st_size), PROT_READ, MAP_PRIVATE, fd, 0);
            if (map != MAP_FAILED) {
                map_ = map;
                size_ = static_cast<std::size_t>(status.st_size);
            }
        }
        if (fd >= 0)
            ::close(fd);
        if (map_)
            return;
    }
    read_ = readInput(name); // reports what is wrong with the file, if anything
}

InputFile::~InputFile()
{
    if (map_)
        ::munmap(map_, size_);
}

void writeOutput(const KNCString& name, const KNCString& bytes)
{
    if (isStandardStream(name)) {
        std::cout.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return; // main flushes standard output and reports a failure there
    }
    errno = 0;
    std::ofstream file(name, std::ios::binary | std::ios::trunc);
    if (!file)
        fail("create", name);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file)
        fail("write", name);
}
