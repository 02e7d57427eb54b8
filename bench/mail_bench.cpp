// The forgiving mail layer against the strict core and memcpy: base64 decoding on clean input,
// charset conversion of Latin-1 text to UTF-8 (built in) and of ISO-8859-2 (through iconv),
// quoted-printable decoding and header values with encoded words.

#include <mail/KNMimeBodyDecoder.h>
#include <mail/KNMimeCharset.h>
#include <mail/KNMimeHeaderText.h>
#include <mime/KNMimeUtils.h>

#include <benchmark/benchmark.h>

#include <cstring>
#include <random>

namespace {

constexpr std::size_t megabyte = 1 << 20;

KNCString randomBytes(std::size_t size)
{
    std::mt19937 rng(1234);
    KNCString data(size, ' ');
    for (char& c : data)
        c = static_cast<char>(rng() % 256);
    return data;
}

// Western European prose in an 8-bit charset: ASCII with about one accented letter in twenty
// bytes, CR LF lines of about 70 characters.
KNCString latin1Text(std::size_t size)
{
    std::mt19937 rng(99);
    const char* words[] = {"der", "Bericht", "f\xFCr", "Stra\xDF" "e", "caf\xE9", "na\xEF" "ve", "and", "the",
                           "quarterly", "r\xE9sum\xE9", "\xE9t\xE9", "data"};
    KNCString data;
    data.reserve(size);
    std::size_t column = 0;
    while (data.size() < size) {
        data += words[rng() % (sizeof(words) / sizeof(words[0]))];
        if (column > 70) {
            data += "\r\n";
            column = 0;
        } else {
            data += ' ';
            column += 8;
        }
    }
    data.resize(size);
    return data;
}

template <class F>
void run(benchmark::State& state, const KNCString& input, F&& work)
{
    for (auto _ : state) {
        auto out = work(input);
        benchmark::DoNotOptimize(out);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(input.size()));
}

void BM_Memcpy(benchmark::State& state)
{
    const KNCString input = randomBytes(megabyte);
    KNCString out(input.size(), '\0');
    for (auto _ : state) {
        std::memcpy(out.data(), input.data(), input.size());
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(input.size()));
}

void BM_Base64DecodeStrict(benchmark::State& state)
{
    run(state, KNMimeUtils::encodeBase64(randomBytes(megabyte)),
        [](const KNCString& in) { return KNMimeUtils::decodeBase64(in); });
}

void BM_Base64DecodeForgiving(benchmark::State& state)
{
    run(state, KNMimeUtils::encodeBase64(randomBytes(megabyte)),
        [](const KNCString& in) { return KNMimeBodyDecoder::decodeBase64(in); });
}

void BM_QuotedPrintableDecodeStrict(benchmark::State& state)
{
    run(state, KNMimeUtils::encodeQuotedPrintable(latin1Text(megabyte)),
        [](const KNCString& in) { return KNMimeUtils::decodeQuotedPrintable(in, true); });
}

void BM_QuotedPrintableDecodeForgiving(benchmark::State& state)
{
    run(state, KNMimeUtils::encodeQuotedPrintable(latin1Text(megabyte)),
        [](const KNCString& in) { return KNMimeBodyDecoder::decodeQuotedPrintable(in); });
}

void BM_Latin1ToUtf8(benchmark::State& state)
{
    run(state, latin1Text(megabyte), [](const KNCString& in) { return KNMimeCharset::toUtf8(in, "iso-8859-1").text; });
}

void BM_Iso88592ToUtf8Iconv(benchmark::State& state)
{
    run(state, latin1Text(megabyte), [](const KNCString& in) { return KNMimeCharset::toUtf8(in, "iso-8859-2").text; });
}

void BM_Utf8Check(benchmark::State& state)
{
    run(state, KNMimeCharset::toUtf8(latin1Text(megabyte), "latin1").text,
        [](const KNCString& in) { return KNMimeCharset::toUtf8(in, "utf-8").text; });
}

void BM_HeaderTextDecode(benchmark::State& state)
{
    run(state, KNCString("=?UTF-8?Q?Gr=C3=BC=C3=9Fe_aus?= =?UTF-8?B?QmVybGluIOKCrA==?= und Hamburg"),
        [](const KNCString& in) { return KNMimeHeaderText::decode(in); });
}

} // namespace

BENCHMARK(BM_Memcpy);
BENCHMARK(BM_Base64DecodeStrict);
BENCHMARK(BM_Base64DecodeForgiving);
BENCHMARK(BM_QuotedPrintableDecodeStrict);
BENCHMARK(BM_QuotedPrintableDecodeForgiving);
BENCHMARK(BM_Latin1ToUtf8);
BENCHMARK(BM_Iso88592ToUtf8Iconv);
BENCHMARK(BM_Utf8Check);
BENCHMARK(BM_HeaderTextDecode);
