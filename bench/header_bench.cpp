// Parsing and printing typical header lines, and the factory's lookup by label.
#include <mime/KNMimeHeader.h>
#include <mime/KNMimeHeaderFactory.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace {

enum class Line { Subject, ContentType, Received };

// A Received-style line of about 400 bytes, folded as mail transfer agents write it.
KNCString receivedLine()
{
    KNCString line = "Received: from mail-relay.example.org (mail-relay.example.org [192.0.2.17])";
    for (int hop = 0; hop < 3; ++hop) {
        line += "\r\n\tby mx" + std::to_string(hop) + ".example.net (Postfix) with ESMTPS id 4F2A" +
                std::to_string(1000 + hop) + "C3B";
        line += "\r\n\tfor <someone@example.net>; Tue, 14 May 2024 09:1" + std::to_string(hop) + ":00 +0200 (CEST)";
    }
    return line;
}

KNCString lineOf(Line kind)
{
    switch (kind) {
    case Line::Subject:
        return "Subject: =?utf-8?Q?Caf=C3=A9_au_lait?= and =?iso-8859-1?B?bWVldGluZyBub3Rlcw==?= for Monday";
    case Line::ContentType:
        return "Content-Type: multipart/alternative; boundary=\"_=_next_part_1715670000_=_\"; "
               "charset=utf-8; format=flowed";
    case Line::Received:
        return receivedLine();
    }
    return KNCString();
}

void setThroughput(benchmark::State& state, std::size_t bytesPerItem)
{
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytesPerItem));
}

void BM_ParseHeader(benchmark::State& state, Line kind)
{
    const KNCString line = lineOf(kind);
    KNMimeHeader header;
    for (auto _ : state) {
        header.fromString(line);
        benchmark::DoNotOptimize(header);
    }
    setThroughput(state, line.size());
}

void BM_PrintHeader(benchmark::State& state, Line kind)
{
    KNMimeHeader header;
    header.fromString(lineOf(kind));
    const std::size_t printedSize = header.asString().size();
    for (auto _ : state) {
        KNCString printed = header.asString();
        benchmark::DoNotOptimize(printed.data());
    }
    setThroughput(state, printedSize);
}

// The floor for the lines above: copying the same bytes into a fresh string.
void BM_CopyHeaderBytes(benchmark::State& state, Line kind)
{
    const KNCString line = lineOf(kind);
    for (auto _ : state) {
        KNCString copy(line.size(), '\0');
        std::memcpy(copy.data(), line.data(), line.size());
        benchmark::DoNotOptimize(copy.data());
    }
    setThroughput(state, line.size());
}

void BM_FactoryCreate(benchmark::State& state)
{
    const std::vector<KNCString> labels = {"Content-Type", "content-transfer-encoding", "MIME-Version", "Subject",
                                           "X-Mailer",     "Content-ID",                "Received",     "From"};
    const auto factory = KNMimeHeaderFactory::instance();
    std::size_t next = 0;
    for (auto _ : state) {
        KNMimeHeader header = factory->create(labels[next]);
        benchmark::DoNotOptimize(header);
        next = (next + 1) % labels.size();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}

BENCHMARK_CAPTURE(BM_ParseHeader, subject, Line::Subject);
BENCHMARK_CAPTURE(BM_ParseHeader, content_type, Line::ContentType);
BENCHMARK_CAPTURE(BM_ParseHeader, received, Line::Received);
BENCHMARK_CAPTURE(BM_PrintHeader, subject, Line::Subject);
BENCHMARK_CAPTURE(BM_PrintHeader, content_type, Line::ContentType);
BENCHMARK_CAPTURE(BM_PrintHeader, received, Line::Received);
BENCHMARK_CAPTURE(BM_CopyHeaderBytes, received, Line::Received);
BENCHMARK(BM_FactoryCreate);

} // namespace
