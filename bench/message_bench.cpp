// Parsing and printing whole messages, against a memcpy of the same bytes as the reference
// (into a reused buffer, and into a new string per message as printing does).
// Four inputs, all CRLF: a 32 MB multipart/mixed with 40 base64 attachments, 2,000 typical
// 2-8 KB messages, a message nested 64 multipart levels deep, and one with 20,000 header lines.

#include <mime/KNMime.h>

#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using Texts = std::vector<KNCString>;

KNCString randomBytes(std::mt19937& random, std::size_t size)
{
    KNCString data(size, '\0');
    for (char& c : data)
        c = static_cast<char>(random() & 0xff);
    return data;
}

KNCString words(std::mt19937& random, std::size_t bytes)
{
    static const char* const vocabulary[] = {"the", "report", "meeting", "Monday", "budget", "garden", "review",
                                             "quarter", "numbers", "please", "attached", "thanks", "schedule"};
    KNCString text;
    std::size_t column = 0;
    while (text.size() < bytes) {
        const KNCString word = vocabulary[random() % 13];
        if (column + word.size() > 72) {
            text += "\r\n";
            column = 0;
        }
        text += word + ' ';
        column += word.size() + 1;
    }
    return text;
}

const char* const commonHeaders =
    "Received: from relay.example.net (relay.example.net [198.51.100.7])\r\n"
    "\tby mx.example.org with ESMTPS id 7Hq2Kd; Tue, 11 Jun 2024 09:12:44 +0200\r\n"
    "From: Alice Example <alice@example.net>\r\n"
    "To: Bob Example <bob@example.org>\r\n"
    "Date: Tue, 11 Jun 2024 09:12:40 +0200\r\n"
    "MIME-Version: 1.0\r\n";

KNCString largeAttachments()
{
    std::mt19937 random(1);
    KNCString text = commonHeaders;
    text += "Subject: forty attachments\r\nContent-Type: multipart/mixed; boundary=\"=_big_0001\"\r\n\r\n";
    for (int i = 0; i < 40; ++i) {
        text += "--=_big_0001\r\nContent-Type: application/octet-stream\r\nContent-Transfer-Encoding: base64\r\n"
                "Content-Disposition: attachment; filename=\"data" + std::to_string(i) + ".bin\"\r\n\r\n";
        text += KNMimeUtils::encodeBase64(randomBytes(random, 612000));
        text += "\r\n";
    }
    return text + "--=_big_0001--\r\n";
}

KNCString typicalMessage(std::mt19937& random, int n)
{
    const KNCString alternative = "=_alt_" + std::to_string(n);
    KNCString body = "--" + alternative + "\r\nContent-Type: text/plain; charset=\"utf-8\"\r\n"
                     "Content-Transfer-Encoding: quoted-printable\r\n\r\n" + words(random, 600 + random() % 2000) +
                     "\r\n--" + alternative + "\r\nContent-Type: text/html; charset=\"utf-8\"\r\n\r\n<html><body><p>" +
                     words(random, 800 + random() % 2500) + "</p></body></html>\r\n--" + alternative + "--\r\n";
    KNCString text = commonHeaders;
    text += "Message-ID: <" + std::to_string(n) + "@example.net>\r\nSubject: " +
            KNMimeUtils::headerEncode("Grüße zum Bericht Nr. " + std::to_string(n), "utf-8", "Q") + "\r\n";
    if (n % 3 != 0)
        return text + "Content-Type: multipart/alternative; boundary=\"" + alternative + "\"\r\n\r\n" + body;
    const KNCString mixed = "=_mix_" + std::to_string(n);
    return text + "Content-Type: multipart/mixed; boundary=\"" + mixed + "\"\r\n\r\n--" + mixed +
           "\r\nContent-Type: multipart/alternative; boundary=\"" + alternative + "\"\r\n\r\n" + body + "\r\n--" +
           mixed + "\r\nContent-Type: image/png\r\nContent-Transfer-Encoding: base64\r\n"
           "Content-Disposition: inline; filename=\"logo.png\"\r\n\r\n" +
           KNMimeUtils::encodeBase64(randomBytes(random, 700)) + "\r\n--" + mixed + "--\r\n";
}

Texts typicalMessages()
{
    std::mt19937 random(2);
    Texts texts;
    for (int n = 0; n < 2000; ++n)
        texts.push_back(typicalMessage(random, n));
    return texts;
}

KNCString nested64()
{
    std::mt19937 random(3);
    KNCString head = commonHeaders;
    head += "Subject: nested\r\n";
    KNCString tail;
    for (int level = 1; level <= 64; ++level) {
        const KNCString boundary = "=_level_" + std::to_string(level) + "_=";
        head += "Content-Type: multipart/mixed; boundary=\"" + boundary + "\"\r\n\r\n--" + boundary +
                "\r\nContent-Type: text/plain\r\n\r\n" + words(random, 4000) + "\r\n--" + boundary + "\r\n";
        tail.insert(0, "\r\n--" + boundary + "--\r\n");
    }
    return head + "Content-Type: text/plain\r\n\r\n" + words(random, 4000) + tail;
}

KNCString manyHeaders()
{
    std::mt19937 random(4);
    KNCString text = commonHeaders;
    for (int i = 0; i < 20000; ++i) {
        text += "X-Trace-" + std::to_string(i) + ": hop " + std::to_string(i) + " via relay-" +
                std::to_string(random() % 100) + ".example.net; id " + std::to_string(random()) + "\r\n";
    }
    return text + "Content-Type: text/plain\r\n\r\n" + words(random, 1000);
}

enum Input { LargeAttachments, TypicalMessages, Nested64, ManyHeaders };

const Texts& texts(Input input)
{
    static const Texts large{largeAttachments()};
    static const Texts typical = typicalMessages();
    static const Texts nested{nested64()};
    static const Texts headers{manyHeaders()};
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

std::int64_t totalBytes(const Texts& all)
{
    std::int64_t bytes = 0;
    for (const KNCString& text : all)
        bytes += static_cast<std::int64_t>(text.size());
    return bytes;
}

void BM_Parse(benchmark::State& state, Input input)
{
    const Texts& all = texts(input);
    for (auto _ : state) {
        for (const KNCString& text : all) {
            KNMimePart message;
            message.fromString(text);
            benchmark::DoNotOptimize(message);
        }
    }
    state.SetBytesProcessed(state.iterations() * totalBytes(all));
}

void BM_Print(benchmark::State& state, Input input)
{
    std::vector<KNMimePart> messages;
    for (const KNCString& text : texts(input)) {
        messages.emplace_back();
        messages.back().fromString(text);
    }
    for (auto _ : state) {
        for (const KNMimePart& message : messages) {
            KNCString printed = message.asString();
            benchmark::DoNotOptimize(printed);
        }
    }
    state.SetBytesProcessed(state.iterations() * totalBytes(texts(input)));
}

void BM_Memcpy(benchmark::State& state, Input input)
{
    const Texts& all = texts(input);
    std::vector<char> target(static_cast<std::size_t>(totalBytes(all)));
    for (auto _ : state) {
        char* out = target.data();
        for (const KNCString& text : all) {
            std::memcpy(out, text.data(), text.size());
            out += text.size();
        }
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * totalBytes(all));
}

// memcpy into a freshly allocated string per message, as printing allocates its result: for
// the 32 MB message this includes the page faults of a new 32 MB block.
void BM_CopyToNewString(benchmark::State& state, Input input)
{
    const Texts& all = texts(input);
    for (auto _ : state) {
        for (const KNCString& text : all) {
            KNCString copy;
            copy.reserve(text.size());
            copy.append(text);
            benchmark::DoNotOptimize(copy);
        }
    }
    state.SetBytesProcessed(state.iterations() * totalBytes(all));
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
