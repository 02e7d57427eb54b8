// The generated messages the message benchmarks read, the same CRLF bytes on every run and
// with every compiler, each input with what a parser has to find in it: its entities, their
// header fields and media types, and the bodies of its leaves.

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
    std::size_t entities = 0;  // messages, multiparts and leaves over all texts
    std::size_t fields = 0;    // header fields of those entities, a folded field counted once
    std::size_t typeBytes = 0; // summed lengths of their media type and subtype names
    std::size_t leaves = 0;    // leaf parts over all texts
    std::size_t bodyBytes = 0; // summed sizes of the leaves' bodies as stored

    void add(KNCString text)
    {
        bytes += static_cast<std::int64_t>(text.size());
        texts.push_back(std::move(text));
    }
    // `count` more multiparts of `type`, written "multipart/subtype", with `fieldCount` header
    // fields each.
    void addMultiparts(const char* type, std::size_t fieldCount, std::size_t count = 1)
    {
        entities += count;
        fields += count * fieldCount;
        typeBytes += count * (std::strlen(type) - 1);
    }
    // One more leaf of `type` with `fieldCount` header fields and a body of `bodySize` bytes.
    void addLeaf(const char* type, std::size_t fieldCount, std::size_t bodySize)
    {
        addMultiparts(type, fieldCount);
        ++leaves;
        bodyBytes += bodySize;
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
    const KNCString htmlBody = "<html><body><p>" + html + "</p></body></html>";
    const KNCString body = "--" + alternative + "\r\nContent-Type: text/plain; charset=\"utf-8\"\r\n"
                           "Content-Transfer-Encoding: quoted-printable\r\n\r\n" + plain + "\r\n--" + alternative +
                           "\r\nContent-Type: text/html; charset=\"utf-8\"\r\n\r\n" + htmlBody + "\r\n--" +
                           alternative + "--\r\n";
    KNCString text = corpusCommonHeaders;
    text += "Message-ID: <" + std::to_string(n) + "@example.net>\r\nSubject: " +
            KNMimeUtils::headerEncode("Grüße zum Bericht Nr. " + std::to_string(n), "utf-8", "Q") + "\r\n";
    // The message's fields: the five common ones, Message-ID, Subject and Content-Type.
    const std::size_t messageFields = 8;
    corpus.addLeaf("text/plain", 2, plain.size());
    corpus.addLeaf("text/html", 1, htmlBody.size());
    if (n % 3 != 0) {
        corpus.addMultiparts("multipart/alternative", messageFields);
        corpus.add(text + "Content-Type: multipart/alternative; boundary=\"" + alternative + "\"\r\n\r\n" + body);
        return;
    }
    const KNCString image = KNMimeUtils::encodeBase64(corpusRandomBytes(random, 700));
    corpus.addMultiparts("multipart/mixed", messageFields);
    corpus.addMultiparts("multipart/alternative", 1);
    corpus.addLeaf("image/png", 3, image.size());
    const KNCString mixed = "=_mix_" + std::to_string(n);
    corpus.add(text + "Content-Type: multipart/mixed; boundary=\"" + mixed + "\"\r\n\r\n--" + mixed +
               "\r\nContent-Type: multipart/alternative; boundary=\"" + alternative + "\"\r\n\r\n" + body +
               "\r\n--" + mixed + "\r\nContent-Type: image/png\r\nContent-Transfer-Encoding: base64\r\n"
               "Content-Disposition: inline; filename=\"logo.png\"\r\n\r\n" + image + "\r\n--" + mixed +
               "--\r\n");
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
    MessageCorpus corpus;
    corpus.addMultiparts("multipart/mixed", 7);
    for (int i = 0; i < 40; ++i) {
        text += "--=_big_0001\r\nContent-Type: application/octet-stream\r\nContent-Transfer-Encoding: base64\r\n"
                "Content-Disposition: attachment; filename=\"data" + std::to_string(i) + ".bin\"\r\n\r\n";
        const KNCString attachment = KNMimeUtils::encodeBase64(corpusRandomBytes(random, 612000));
        corpus.addLeaf("application/octet-stream", 3, attachment.size());
        text += attachment;
        text += "\r\n";
    }
    corpus.add(text + "--=_big_0001--\r\n");
    return corpus;
}

// One message `levels` multipart/mixed levels deep, a text part beside each level and one at
// the bottom.
inline MessageCorpus nestedMessage(int levels)
{
    std::mt19937 random(3);
    KNCString head = corpusCommonHeaders;
    head += "Subject: nested\r\n";
    KNCString tail;
    MessageCorpus corpus;
    corpus.addMultiparts("multipart/mixed", 7); // the message: common fields, Subject, Content-Type
    corpus.addMultiparts("multipart/mixed", 1, static_cast<std::size_t>(levels - 1));
    for (int level = 1; level <= levels; ++level) {
        const KNCString boundary = "=_level_" + std::to_string(level) + "_=";
        const KNCString words = corpusWords(random, 4000);
        corpus.addLeaf("text/plain", 1, words.size());
        head += "Content-Type: multipart/mixed; boundary=\"" + boundary + "\"\r\n\r\n--" + boundary +
                "\r\nContent-Type: text/plain\r\n\r\n" + words + "\r\n--" + boundary + "\r\n";
        tail.insert(0, "\r\n--" + boundary + "--\r\n");
    }
    const KNCString words = corpusWords(random, 4000);
    corpus.addLeaf("text/plain", 1, words.size());
    corpus.add(head + "Content-Type: text/plain\r\n\r\n" + words + tail);
    return corpus;
}

inline MessageCorpus nested16()
{
    return nestedMessage(16);
}

inline MessageCorpus nested64()
{
    return nestedMessage(64);
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
    const KNCString words = corpusWords(random, 1000);
    MessageCorpus corpus;
    corpus.addLeaf("text/plain", 5 + 20000 + 1, words.size()); // common fields, traces, Content-Type
    corpus.add(text + "Content-Type: text/plain\r\n\r\n" + words);
    return corpus;
}

#endif
