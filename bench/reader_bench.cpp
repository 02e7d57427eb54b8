// The forgiving reader beside the strict parser on the same bytes (CRLF, and LF as stored on
// disk), and its growth with the count of each shape it handles: time(8N) / time(N) stays
// near 8 when reading is linear. Compare rows of one run:
//
//     build/release/bench/reader_bench --benchmark_repetitions=3 --benchmark_report_aggregates_only=true

#include "MessageCorpus.h"
#include <mail/KNMimeMbox.h>
#include <mail/KNMimeReader.h>
#include <mime/KNMimePart.h>

#include <benchmark/benchmark.h>

#include <optional>

namespace {

enum class Input { Typical, Large, Nested, ManyHeaders };

const MessageCorpus& corpus(Input input)
{
    static const MessageCorpus typical = typicalMessages();
    static const MessageCorpus large = largeAttachments();
    static const MessageCorpus nested = nested64();
    static const MessageCorpus headers = manyHeaders();
    switch (input) {
    case Input::Typical: return typical;
    case Input::Large: return large;
    case Input::Nested: return nested;
    case Input::ManyHeaders: break;
    }
    return headers;
}

MessageCorpus withLineFeeds(const MessageCorpus& crlf)
{
    MessageCorpus lf;
    for (const KNCString& text : crlf.texts)
        lf.add(KNMimeUtils::replaceLineDelimiter(text, "\n"));
    return lf;
}

void BM_StrictParse(benchmark::State& state, Input input)
{
    const MessageCorpus& all = corpus(input);
    for (auto _ : state)
        for (const KNCString& text : all.texts) {
            KNMimePart part;
            part.fromString(text);
            benchmark::DoNotOptimize(part);
        }
    state.SetBytesProcessed(state.iterations() * all.bytes);
}

void readAll(benchmark::State& state, const MessageCorpus& all)
{
    const KNMimeReader reader;
    for (auto _ : state)
        for (const KNCString& text : all.texts) {
            KNMimeReadResult result = reader.read(text);
            benchmark::DoNotOptimize(result);
        }
    state.SetBytesProcessed(state.iterations() * all.bytes);
}

void BM_Read(benchmark::State& state, Input input)
{
    readAll(state, corpus(input));
}

void BM_ReadLineFeeds(benchmark::State& state, Input input)
{
    static const MessageCorpus typical = withLineFeeds(corpus(Input::Typical));
    static const MessageCorpus large = withLineFeeds(corpus(Input::Large));
    readAll(state, input == Input::Typical ? typical : large);
}

// One message with n of a shape: header fields, parts, nested attached messages (capped at
// the nesting limit, so counted in parts each holding one), delimiter lines with padding.
KNCString shaped(const std::string& shape, int n)
{
    KNCString text = "Content-Type: multipart/mixed; boundary=\"b\"\r\n";
    if (shape == "headers") {
        for (int i = 0; i < n; ++i)
            text += "X-Field-" + std::to_string(i) + ": value number " + std::to_string(i) + "\r\n";
        return text + "\r\n--b\r\n\r\nx\r\n--b--\r\n";
    }
    text += "\r\n";
    for (int i = 0; i < n; ++i) {
        if (shape == "parts")
            text += "--b\r\nContent-Type: text/plain\r\n\r\npart " + std::to_string(i) + "\r\n";
        else if (shape == "messages")
            text += "--b\r\nContent-Type: message/rfc822\r\n\r\nSubject: m\r\nContent-Type: text/plain\r\n\r\nx\r\n";
        else // delimiter lines with transport padding and empty parts
            text += "--b \t\r\n\r\n";
    }
    return text + "--b--\r\n";
}

// Reading only: each tree is destroyed outside the timed region, since freeing a tree of
// 64,000 parts is the core's cost (and the allocator's), measured on its own below.
void BM_ReadShape(benchmark::State& state, const char* shape)
{
    const KNCString text = shaped(shape, static_cast<int>(state.range(0)));
    const KNMimeReader reader;
    for (auto _ : state) {
        std::optional<KNMimeReadResult> result(reader.read(text));
        benchmark::DoNotOptimize(result);
        state.PauseTiming();
        result.reset();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void BM_FreeShape(benchmark::State& state, const char* shape)
{
    const KNCString text = shaped(shape, static_cast<int>(state.range(0)));
    const KNMimeReader reader;
    for (auto _ : state) {
        state.PauseTiming();
        std::optional<KNMimeReadResult> result(reader.read(text));
        state.ResumeTiming();
        result.reset();
        benchmark::DoNotOptimize(result);
    }
}

// The yardstick for LF input: one pass that copies the bytes into fresh memory, as making
// the CRLF copy at least must.
void BM_CopyInput(benchmark::State& state, Input input)
{
    const MessageCorpus& all = corpus(input);
    for (auto _ : state)
        for (const KNCString& text : all.texts) {
            KNCString copy = text;
            benchmark::DoNotOptimize(copy.data());
        }
    state.SetBytesProcessed(state.iterations() * all.bytes);
}

void BM_SplitMbox(benchmark::State& state)
{
    KNCString mailbox;
    for (int i = 0; i < state.range(0); ++i)
        mailbox += "From a@example.net Mon Jan  1 00:00:00 2024\nSubject: " + std::to_string(i) + "\n\n>From x\nbody\n\n";
    for (auto _ : state) {
        auto messages = KNMimeMbox::split(mailbox, KNMimeMbox::Format::Mboxrd);
        benchmark::DoNotOptimize(messages);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(mailbox.size()));
}

} // namespace

BENCHMARK_CAPTURE(BM_StrictParse, typical_messages, Input::Typical)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Read, typical_messages, Input::Typical)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ReadLineFeeds, typical_messages, Input::Typical)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_CopyInput, typical_messages, Input::Typical)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_StrictParse, large_attachments, Input::Large)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Read, large_attachments, Input::Large)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ReadLineFeeds, large_attachments, Input::Large)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_CopyInput, large_attachments, Input::Large)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_StrictParse, nested_64, Input::Nested)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Read, nested_64, Input::Nested)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_StrictParse, many_headers, Input::ManyHeaders)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Read, many_headers, Input::ManyHeaders)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_ReadShape, headers, "headers")->Arg(1000)->Arg(8000)->Arg(64000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ReadShape, parts, "parts")->Arg(1000)->Arg(8000)->Arg(64000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ReadShape, messages, "messages")->Arg(1000)->Arg(8000)->Arg(64000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_FreeShape, parts, "parts")->Arg(1000)->Arg(8000)->Arg(64000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_FreeShape, messages, "messages")->Arg(1000)->Arg(8000)->Arg(64000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ReadShape, delimiters, "delimiters")->Arg(1000)->Arg(8000)->Arg(64000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SplitMbox)->Arg(1000)->Arg(8000)->Arg(64000)->Unit(benchmark::kMillisecond);
