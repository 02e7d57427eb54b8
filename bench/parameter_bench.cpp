// Parameter lists and content types: reading and printing. The per-item rate of the list
// benchmarks should not fall as lists grow from a thousand to a hundred thousand parameters.
#include <mime/KNMimeContentType.h>
#include <mime/KNMimeMultipartType.h>
#include <mime/KNMimeParameterList.h>

#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

// `count` parameters mixing plain, quoted and escaped values, a comment and a fold.
KNCString parameterText(std::size_t count)
{
    KNCString text;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string n = std::to_string(i);
        switch (i % 4) {
        case 0: text += "name" + n + "=value" + n; break;
        case 1: text += " Name" + n + " = \"quoted; value " + n + "\""; break;
        case 2: text += "n" + n + "=\"esc\\\"aped\\\\" + n + "\" (comment; here)"; break;
        default: text += "\r\n\tfolded" + n + "=\"x\xC3\xA9" + n + "\""; break;
        }
        text += ';';
    }
    return text;
}

void BM_ParameterListParse(benchmark::State& state)
{
    const std::size_t count = static_cast<std::size_t>(state.range(0));
    const KNCString text = parameterText(count);
    for (auto _ : state) {
        KNMimeParameterList list;
        list.fromString(text);
        benchmark::DoNotOptimize(list);
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * count));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_ParameterListParse)->Arg(1000)->Arg(10000)->Arg(100000);

void BM_ParameterListPrint(benchmark::State& state)
{
    const std::size_t count = static_cast<std::size_t>(state.range(0));
    KNMimeParameterList list;
    list.fromString(parameterText(count));
    std::size_t bytes = 0;
    for (auto _ : state) {
        const KNCString text = list.asString();
        bytes += text.size();
        benchmark::DoNotOptimize(text.data());
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * count));
    state.SetBytesProcessed(static_cast<int64_t>(bytes));
}
BENCHMARK(BM_ParameterListPrint)->Arg(1000)->Arg(10000)->Arg(100000);

// The reference: copying as many bytes as the parse benchmark reads.
void BM_MemcpyReference(benchmark::State& state)
{
    const KNCString text = parameterText(static_cast<std::size_t>(state.range(0)));
    std::vector<char> target(text.size());
    for (auto _ : state) {
        std::memcpy(target.data(), text.data(), text.size());
        benchmark::DoNotOptimize(target.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_MemcpyReference)->Arg(1000)->Arg(100000);

const KNCString typicalTypes[] = {
    "text/plain; charset=\"us-ascii\"",
    "multipart/mixed; boundary=\"_=_next_part_1732176000000001_=_\"",
};

void BM_ContentTypeParse(benchmark::State& state)
{
    const KNCString& text = typicalTypes[state.range(0)];
    KNMimeContentType type;
    for (auto _ : state) {
        type.fromString(text);
        benchmark::DoNotOptimize(type.body());
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_ContentTypeParse)->Arg(0)->Arg(1);

void BM_ContentTypePrint(benchmark::State& state)
{
    KNMimeContentType type;
    type.fromString(typicalTypes[state.range(0)]);
    std::size_t bytes = 0;
    for (auto _ : state) {
        const KNCString text = type.asString();
        bytes += text.size();
        benchmark::DoNotOptimize(text.data());
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
    state.SetBytesProcessed(static_cast<int64_t>(bytes));
}
BENCHMARK(BM_ContentTypePrint)->Arg(0)->Arg(1);

void BM_MultipartTypeBoundary(benchmark::State& state)
{
    KNMimeContentType type;
    type.fromString(typicalTypes[1]);
    for (auto _ : state) {
        const KNMimeMultipartType multipart(type);
        benchmark::DoNotOptimize(multipart.getBoundary().data());
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
}
BENCHMARK(BM_MultipartTypeBoundary);

} // namespace
