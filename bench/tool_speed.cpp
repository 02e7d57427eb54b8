// `knmime tree --json` over an mbox of the 2,000 typical messages, against the reader alone on
// the same bytes: the tool may cost at most 1.5 times the reader's time. Writes the mbox to a
// temporary file and times the best of five runs of three things:
//
//   - the reader in this process: split the mbox and read every message, with a warm heap;
//   - the reader as a program: this program started again with --read-only, which maps the
//     file, splits it and reads every message, as any command has to (start-up, first use
//     of memory and all);
//   - knmime tree --json FILE, its output thrown away.
//
// Processor time (user and system) is compared, which a busy machine disturbs less than the
// clock on the wall; both are printed.
//
//     build/release/bench/tool_speed [path/to/knmime]

#include "MessageCorpus.h"
#include <mail/KNMimeMbox.h>
#include <mail/KNMimeReader.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int Runs = 5;

struct Times {
    double wall = 1e9;
    double processor = 1e9;
};

double seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

// Processor time used so far by this process, or by its finished children.
double processorSeconds(bool children)
{
    rusage usage{};
    getrusage(children ? RUSAGE_CHILDREN : RUSAGE_SELF, &usage);
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// The best of `Runs` runs of `work`, on the wall clock and in processor time.
template <class Work>
Times bestTimes(bool inChildren, Work work)
{
    Times best;
    for (int run = 0; run < Runs; ++run) {
        const double processorStart = processorSeconds(inChildren);
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        best.wall = std::min(best.wall, took.count());
        best.processor = std::min(best.processor, processorSeconds(inChildren) - processorStart);
    }
    return best;
}

std::size_t readAll(std::string_view mbox)
{
    std::size_t entities = 0;
    for (const KNMimeMbox::Message& message : KNMimeMbox::split(mbox))
        entities += KNMimeReader().read(message.text).getEntities().size();
    return entities;
}

// Runs `arguments` with standard output thrown away; false when it fails.
bool runQuietly(std::vector<std::string> arguments)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    pid_t child = 0;
    const bool started = posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    return started && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// --read-only FILE: the reader as a program.
int readOnly(const char* file)
{
    const int fd = open(file, O_RDONLY);
    struct stat status {};
    if (fd < 0 || fstat(fd, &status) != 0)
        return 1;
    const auto size = static_cast<std::size_t>(status.st_size);
    void* map = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, fd, 0);
    close(fd);
    if (map == MAP_FAILED)
        return 1;
    std::printf("%zu\n", readAll(std::string_view(static_cast<const char*>(map), size)));
    munmap(map, size);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::string(argv[1]) == "--read-only")
        return readOnly(argv[2]);
    const std::string tool = argc > 1 ? argv[1] : KNMIME_TOOL_PATH;
    KNCString mbox;
    for (const KNCString& text : typicalMessages().texts)
        mbox += "From alice@example.net Tue Jun 11 09:12:44 2024\r\n" + text + "\r\n";
    const std::filesystem::path file = std::filesystem::temp_directory_path() / "knmime_tool_speed.mbox";
    std::ofstream(file, std::ios::binary).write(mbox.data(), static_cast<std::streamsize>(mbox.size()));

    std::size_t entities = 0;
    const Times reader = bestTimes(false, [&] { entities = readAll(mbox); });
    bool ok = true;
    const Times readerProgram = bestTimes(true, [&] { ok = runQuietly({argv[0], "--read-only", file.string()}) && ok; });
    const Times treeJson = bestTimes(true, [&] { ok = runQuietly({tool, "tree", "--json", file.string()}) && ok; });
    if (!std::getenv("KNMIME_KEEP_MBOX"))
        std::filesystem::remove(file);
    if (!ok) {
        std::cerr << "tool_speed: a run of " << tool << " or of the reader program failed\n";
        return 1;
    }
    std::printf("mbox of 2000 messages, %zu bytes, %zu entities\n", mbox.size(), entities);
    std::printf("                          processor  wall\n");
    std::printf("reader in this process    %.3f s    %.3f s\n", reader.processor, reader.wall);
    std::printf("reader as a program       %.3f s    %.3f s\n", readerProgram.processor, readerProgram.wall);
    std::printf("knmime tree --json        %.3f s    %.3f s\n", treeJson.processor, treeJson.wall);
    std::printf("ratio to the program      %.2f       %.2f   (at most 1.5)\n", treeJson.processor / readerProgram.processor,
                treeJson.wall / readerProgram.wall);
    std::printf("ratio to this process     %.2f       %.2f\n", treeJson.processor / reader.processor,
                treeJson.wall / reader.wall);
    return 0;
}
