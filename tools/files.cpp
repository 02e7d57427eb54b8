#include "files.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

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
    return readAll(file, name);
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
