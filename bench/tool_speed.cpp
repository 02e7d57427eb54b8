// `knmime tree --json` over an mbox of the 2,000 typical messages, against the reader alone on
// the same bytes: the tool may cost at most 1.5 times the reader's time. Writes the mbox to a
// temporary file, times the best of five runs of each and prints the ratio. Processor time
// (user and system) is compared, which a busy machine disturbs less than the clock on the
// wall; both are printed:
//
//     build/release/bench/tool_speed

#include "MessageCorpus.h"
#include <mail/KNMimeMbox.h>
#include <mail/KNMimeReader.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <sys/resource.h>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

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

} // namespace

int main(int argc, char** argv)
{
    const KNCString tool = argc > 1 ? argv[1] : KNMIME_TOOL_PATH;
    KNCString mbox;
    for (const KNCString& text : typicalMessages().texts)
        mbox += "From alice@example.net Tue Jun 11 09:12:44 2024\r\n" + text + "\r\n";
    const std::filesystem::path file = std::filesystem::temp_directory_path() / "knmime_tool_speed.mbox";
    std::ofstream(file, std::ios::binary).write(mbox.data(), static_cast<std::streamsize>(mbox.size()));

    std::size_t entities = 0;
    const Times reader = bestTimes(false, [&] {
        entities = 0;
        for (const KNMimeMbox::Message& message : KNMimeMbox::split(mbox))
            entities += KNMimeReader().read(message.text).getEntities().size();
    });
    const KNCString command = '"' + tool + "\" tree --json \"" + file.string() + "\" > /dev/null";
    int status = 0;
    const Times treeJson = bestTimes(true, [&] { status = std::system(command.c_str()); });
    if (!std::getenv("KNMIME_KEEP_MBOX"))
        std::filesystem::remove(file);
    if (status != 0) {
        std::cerr << "tool_speed: " << command << " failed\n";
        return 1;
    }
    std::printf("mbox of 2000 messages, %zu bytes, %zu entities\n", mbox.size(), entities);
    std::printf("                         processor  wall\n");
    std::printf("reader (split and read)  %.3f s    %.3f s\n", reader.processor, reader.wall);
    std::printf("knmime tree --json       %.3f s    %.3f s\n", treeJson.processor, treeJson.wall);
    std::printf("ratio                    %.2f       %.2f   (at most 1.5)\n", treeJson.processor / reader.processor,
                treeJson.wall / reader.wall);
    return 0;
}
