// The generated messages the message benchmarks read, the same CRLF bytes on every run and
// with every compiler, each input with the leaf parts a parser has to find in it.

#ifndef KN_BENCH_MESSAGECORPUS_H
#define KN_BENCH_MESSAGECORPUS_H

#include <foundation/KNCString.h>
#include <mime/KNMimeUtils.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <utility>

struct MessageCorpus {
    KNCStringList texts;
    std::int64_t bytes = 0;    // summed sizes of the texts
    std::size_t leaves = 0;    // leaf parts over all texts
    std::size_t typeBytes = 0; // summed lengths of the leaves' media type and subtype names

    void add(KNCString text)
    {
        bytes += static_cast<std::int64_t>(text.size());
        texts.push_back(std::move(text));
    }
    // `count` more leaves of `type`, written "type/subtype".
    void addLeaves(const char* type, std::size_t count = 1)
    {
        leaves += count;
        typeBytes += count * (std::strlen(type) - 1);
    }
};

inline KNCString corpusRandomBytes(std::mt19937& random, std::size_t size)
{
    KNCString data(size, '\0');
    for (char& c : data)
        c = static_cast<char>(random() & 0xff);
    return data;
}

inline KNCString corpusWords(std::mt19937& random, std::size_t bytes)
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

inline const char* const corpusCommonHeaders =
    "Received: from relay.example.net (relay.example.net [198.51.100.7])\r\n"
    "\tby mx.example.org with ESMTPS id 7Hq2Kd; Tue, 11 Jun 2024 09:12:44 +0200\r\n"
    "From: Alice Example <alice@example.net>\r\n"
    "To: Bob Example <bob@example.org>\r\n"
    "Date: Tue, 11 Jun 2024 09:12:40 +0200\r\n"
    "MIME-Version: 1.0\r\n";

// multipart/alternative (text/plain and text/html); every third one inside a multipart/mixed
// next to a small base64 image.
inline void addTypicalMessage(MessageCorpus& corpus, std::mt19937& random, int n)
{
    // One draw a statement, html first as g++ drew them when they shared an expression: compilers
    // order the operands of one expression differently, and the bytes would follow.
    const KNCString html = corpusWords(random, 800 + random() % 2500);
    const KNCString plain = corpusWords(random, 600 + random() % 2000);
    const KNCString alternative = "=_alt_" + std::to_string(n);
    const KNCString body = "--" + alternative + "\r\nContent-Type: text/plain; charset=\"utf-8\"\r\n"
                           "Content-Transfer-Encoding: quoted-printable\r\n\r\n" + plain + "\r\n--" + alternative +
                           "\r\nContent-Type: text/html; charset=\"utf-8\"\r\n\r\n<html><body><p>" + html +
                           "</p></body></html>\r\n--" + alternative + "--\r\n";
    KNCString text = corpusCommonHeaders;
    text += "Message-ID: <" + std::to_string(n) + "@example.net>\r\nSubject: " +
            KNMimeUtils::headerEncode("Grüße zum Bericht Nr. " + std::to_string(n), "utf-8", "Q") + "\r\n";
    corpus.addLeaves("text/plain");
    corpus.addLeaves("text/html");
    if (n % 3 != 0) {
        corpus.add(text + "Content-Type: multipart/alternative; boundary=\"" + alternative + "\"\r\n\r\n" + body);
        return;
    }
    corpus.addLeaves("image/png");
    const KNCString mixed = "=_mix_" + std::to_string(n);
    corpus.add(text + "Content-Type: multipart/mixed; boundary=\"" + mixed + "\"\r\n\r\n--" + mixed +
               "\r\nContent-Type: multipart/alternative; boundary=\"" + alternative + "\"\r\n\r\n" + body +
               "\r\n--" + mixed + "\r\nContent-Type: image/png\r\nContent-Transfer-Encoding: base64\r\n"
               "Content-Disposition: inline; filename=\"logo.png\"\r\n\r\n" +
               KNMimeUtils::encodeBase64(corpusRandomBytes(random, 700)) + "\r\n--" + mixed + "--\r\n");
}

// 2,000 messages of 2-8 KB.
inline MessageCorpus typicalMessages()
{
    std::mt19937 random(2);
    MessageCorpus corpus;
    for (int n = 0; n < 2000; ++n)
        addTypicalMessage(corpus, random, n);
    return corpus;
}

// One 32 MB multipart/mixed with 40 base64 attachments.
inline MessageCorpus largeAttachments()
{
    std::mt19937 random(1);
    KNCString text = corpusCommonHeaders;
    text += "Subject: forty attachments\r\nContent-Type: multipart/mixed; boundary=\"=_big_0001\"\r\n\r\n";
    for (int i = 0; i < 40; ++i) {
        text += "--=_big_0001\r\nContent-Type: application/octet-stream\r\nContent-Transfer-Encoding: base64\r\n"
                "Content-Disposition: attachment; filename=\"data" + std::to_string(i) + ".bin\"\r\n\r\n";
        text += KNMimeUtils::encodeBase64(corpusRandomBytes(random, 612000));
        text += "\r\n";
    }
    MessageCorpus corpus;
    corpus.add(text + "--=_big_0001--\r\n");
    corpus.addLeaves("application/octet-stream", 40);
    return corpus;
}

// One message 64 multipart/mixed levels deep, a text part beside each level and one at the bottom.
inline MessageCorpus nested64()
{
    std::mt19937 random(3);
    KNCString head = corpusCommonHeaders;
    head += "Subject: nested\r\n";
    KNCString tail;
    for (int level = 1; level <= 64; ++level) {
        const KNCString boundary = "=_level_" + std::to_string(level) + "_=";
        head += "Content-Type: multipart/mixed; boundary=\"" + boundary + "\"\r\n\r\n--" + boundary +
                "\r\nContent-Type: text/plain\r\n\r\n" + corpusWords(random, 4000) + "\r\n--" + boundary + "\r\n";
        tail.insert(0, "\r\n--" + boundary + "--\r\n");
    }
    MessageCorpus corpus;
    corpus.add(head + "Content-Type: text/plain\r\n\r\n" + corpusWords(random, 4000) + tail);
    corpus.addLeaves("text/plain", 65);
    return corpus;
}

// One message with 20,000 header lines above a short text body.
inline MessageCorpus manyHeaders()
{
    std::mt19937 random(4);
    KNCString text = corpusCommonHeaders;
    for (int i = 0; i < 20000; ++i) {
        const std::uint32_t id = random(); // before relay, as in addTypicalMessage
        const std::uint32_t relay = random() % 100;
        text += "X-Trace-" + std::to_string(i) + ": hop " + std::to_string(i) + " via relay-" +
                std::to_string(relay) + ".example.net; id " + std::to_string(id) + "\r\n";
    }
    MessageCorpus corpus;
    corpus.add(text + "Content-Type: text/plain\r\n\r\n" + corpusWords(random, 1000));
    corpus.addLeaves("text/plain");
    return corpus;
}

#endif
