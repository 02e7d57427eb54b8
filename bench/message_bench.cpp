// Parsing and printing whole messages, against a memcpy of the same bytes as the reference
// (into a reused buffer, and into a new string per message as printing does).
// Four inputs from MessageCorpus.h, all CRLF: a 32 MB multipart/mixed with 40 base64 attachments, 2,000 typical
// 2-8 KB messages, a message nested 64 multipart levels deep, and one with 20,000 header lines.

#include "MessageCorpus.h"

#include <mime/KNMime.h>

#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

enum Input { LargeAttachments, TypicalMessages, Nested64, ManyHeaders };

const MessageCorpus& corpus(Input input)
{
    static const MessageCorpus large = largeAttachments();
    static const MessageCorpus typical = typicalMessages();
    static const MessageCorpus nested = nested64();
    static const MessageCorpus headers = manyHeaders();
    switch (input) {
    case LargeAttachments:
        return large;
    case TypicalMessages:
        return typical;
    case Nested64:
        return nested;
    default:
        return headers;
    }
}

void BM_Parse(benchmark::State& state, Input input)
{
    const MessageCorpus& all = corpus(input);
    for (auto _ : state) {
        for (const KNCString& text : all.texts) {
            KNMimePart message;
            message.fromString(text);
            benchmark::DoNotOptimize(message);
        }
    }
    state.SetBytesProcessed(state.iterations() * all.bytes);
}

void BM_Print(benchmark::State& state, Input input)
{
    const MessageCorpus& all = corpus(input);
    std::vector<KNMimePart> messages;
    for (const KNCString& text : all.texts) {
        messages.emplace_back();
        messages.back().fromString(text);
    }
    for (auto _ : state) {
        for (const KNMimePart& message : messages) {
            KNCString printed = message.asString();
            benchmark::DoNotOptimize(printed);
        }
    }
    state.SetBytesProcessed(state.iterations() * all.bytes);
}

void BM_Memcpy(benchmark::State& state, Input input)
{
    const MessageCorpus& all = corpus(input);
    std::vector<char> target(static_cast<std::size_t>(all.bytes));
    for (auto _ : state) {
        char* out = target.data();
        for (const KNCString& text : all.texts) {
            std::memcpy(out, text.data(), text.size());
            out += text.size();
        }
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * all.bytes);
}

// memcpy into a freshly allocated string per message, as printing allocates its result: for
// the 32 MB message this includes the page faults of a new 32 MB block.
void BM_CopyToNewString(benchmark::State& state, Input input)
{
    const MessageCorpus& all = corpus(input);
    for (auto _ : state) {
        for (const KNCString& text : all.texts) {
            KNCString copy;
            copy.reserve(text.size());
            copy.append(text);
            benchmark::DoNotOptimize(copy);
        }
    }
    state.SetBytesProcessed(state.iterations() * all.bytes);
}

} // namespace

BENCHMARK_CAPTURE(BM_Memcpy, large_attachments, LargeAttachments)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_CopyToNewString, large_attachments, LargeAttachments)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Parse, large_attachments, LargeAttachments)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Print, large_attachments, LargeAttachments)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Memcpy, typical_messages, TypicalMessages)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_CopyToNewString, typical_messages, TypicalMessages)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Parse, typical_messages, TypicalMessages)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Print, typical_messages, TypicalMessages)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Memcpy, nested_64, Nested64)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_CopyToNewString, nested_64, Nested64)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Parse, nested_64, Nested64)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Print, nested_64, Nested64)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Memcpy, many_headers, ManyHeaders)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_CopyToNewString, many_headers, ManyHeaders)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Parse, many_headers, ManyHeaders)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Print, many_headers, ManyHeaders)->Unit(benchmark::kMicrosecond);
