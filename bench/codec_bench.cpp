#include <mime/KNMimeUtils.h>

#include <benchmark/benchmark.h>

#include <cstring>
#include <random>

namespace {

enum Kind { Random = 0, Text = 1 };

// Random bytes, or ASCII prose in CR LF lines of about 70 characters.
KNCString makeInput(std::size_t size, int kind)
{
    std::mt19937 rng(1234);
    KNCString data(size, ' ');
    if (kind == Random) {
        for (char& c : data)
            c = static_cast<char>(rng() % 256);
        return data;
    }
    const char* words[] = {"the", "quick", "brown", "fox", "jumps", "over", "a", "lazy", "dog,", "and", "runs."};
    std::size_t column = 0;
    for (std::size_t i = 0; i < size;) {
        const char* w = words[rng() % (sizeof(words) / sizeof(words[0]))];
        for (; *w != '\0' && i < size; ++w, ++column)
            data[i++] = *w;
        if (i + 1 < size && column > 70) {
            data[i++] = '\r';
            data[i++] = '\n';
            column = 0;
        } else if (i < size) {
            data[i++] = ' ';
            ++column;
        }
    }
    return data;
}

void setLabel(benchmark::State& state)
{
    state.SetLabel(state.range(1) == Random ? "random" : "text");
}

template <class F>
void run(benchmark::State& state, const KNCString& input, F&& codec)
{
    for (auto _ : state) {
        KNCString out = codec(input);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(input.size()));
    setLabel(state);
}

void BM_Memcpy(benchmark::State& state)
{
    const KNCString input = makeInput(static_cast<std::size_t>(state.range(0)), static_cast<int>(state.range(1)));
    KNCString out(input.size(), '\0');
    for (auto _ : state) {
        std::memcpy(out.data(), input.data(), input.size());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(input.size()));
    setLabel(state);
}

void BM_Base64Encode(benchmark::State& state)
{
    const KNCString input = makeInput(static_cast<std::size_t>(state.range(0)), static_cast<int>(state.range(1)));
    run(state, input, KNMimeUtils::encodeBase64);
}

void BM_Base64Decode(benchmark::State& state)
{
    const KNCString input = KNMimeUtils::encodeBase64(
        makeInput(static_cast<std::size_t>(state.range(0)), static_cast<int>(state.range(1))));
    run(state, input, KNMimeUtils::decodeBase64);
}

void BM_QuotedPrintableEncode(benchmark::State& state)
{
    const KNCString input = makeInput(static_cast<std::size_t>(state.range(0)), static_cast<int>(state.range(1)));
    run(state, input, KNMimeUtils::encodeQuotedPrintable);
}

void BM_QuotedPrintableDecode(benchmark::State& state)
{
    const KNCString input = KNMimeUtils::encodeQuotedPrintable(
        makeInput(static_cast<std::size_t>(state.range(0)), static_cast<int>(state.range(1))));
    run(state, input, [](const KNCString& text) { return KNMimeUtils::decodeQuotedPrintable(text, true); });
}

// Sizes in bytes of the unencoded data (64 KB, 1 MB), random and text.
void sizes(benchmark::internal::Benchmark* b)
{
    for (const int64_t size : {int64_t{64} << 10, int64_t{1} << 20})
        for (const int64_t kind : {Random, Text})
            b->Args({size, kind});
}

} // namespace

BENCHMARK(BM_Memcpy)->Apply(sizes);
BENCHMARK(BM_Base64Encode)->Apply(sizes);
BENCHMARK(BM_Base64Decode)->Apply(sizes);
BENCHMARK(BM_QuotedPrintableEncode)->Apply(sizes);
BENCHMARK(BM_QuotedPrintableDecode)->Apply(sizes);
