#include <mime/KNMimeUtils.h>

#include <benchmark/benchmark.h>

#include <cstring>

// Each benchmark runs at N and 8N bytes (N = 1 MB) on inputs dense with the structure the
// operation works on, so the two figures show whether the time grows linearly.

namespace {

constexpr int64_t N = int64_t{1} << 20;

// `unit` repeated to `size` bytes, with `edge` at both ends when given.
KNCString repeat(const char* unit, std::size_t size, char edge = '\0')
{
    const std::size_t n = std::strlen(unit);
    KNCString text;
    text.reserve(size);
    while (text.size() + n <= size)
        text += unit;
    text.resize(size, 'x');
    if (edge != '\0' && size >= 2)
        text.front() = text.back() = edge;
    return text;
}

template <class F>
void run(benchmark::State& state, const KNCString& input, F&& op)
{
    for (auto _ : state) {
        KNCString out = op(input);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(input.size()));
}

void BM_Memcpy(benchmark::State& state)
{
    const KNCString input(static_cast<std::size_t>(state.range(0)), 'a');
    KNCString out(input.size(), '\0');
    for (auto _ : state) {
        std::memcpy(out.data(), input.data(), input.size());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(input.size()));
}

// A line break every 2 bytes; each one becomes CR LF.
void BM_ReplaceLineDelimiter(benchmark::State& state)
{
    const KNCString input = repeat("a\n", static_cast<std::size_t>(state.range(0)));
    run(state, input, [](const KNCString& text) { return KNMimeUtils::replaceLineDelimiter(text, "\r\n"); });
}

// A fold every 3 bytes; every one is removed.
void BM_UnfoldAndTrim(benchmark::State& state)
{
    const KNCString input = repeat("\r\n ", static_cast<std::size_t>(state.range(0)), 'x');
    run(state, input, KNMimeUtils::unfoldAndTrim);
}

// One long line of short words: a fold every 78 columns. This one runs close to memory
// bandwidth, so its 8N figure follows the memcpy reference rather than the algorithm.
void BM_FoldLongLine(benchmark::State& state)
{
    const KNCString input = repeat("ab ", static_cast<std::size_t>(state.range(0)));
    run(state, input, KNMimeUtils::fold);
}

// A line break every 3 bytes: many short lines, nothing to fold.
void BM_FoldShortLines(benchmark::State& state)
{
    const KNCString input = repeat("a\r\n", static_cast<std::size_t>(state.range(0)));
    run(state, input, KNMimeUtils::fold);
}

} // namespace

BENCHMARK(BM_Memcpy)->Arg(N)->Arg(8 * N);
BENCHMARK(BM_ReplaceLineDelimiter)->Arg(N)->Arg(8 * N);
BENCHMARK(BM_UnfoldAndTrim)->Arg(N)->Arg(8 * N);
BENCHMARK(BM_FoldLongLine)->Arg(N)->Arg(8 * N);
BENCHMARK(BM_FoldShortLines)->Arg(N)->Arg(8 * N);
