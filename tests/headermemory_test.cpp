// Header bodies made by a parse share memory that is freed with the last of them. Handles
// taken out of a parsed message must outlive it, bodies may be freed on any thread, and a
// failed parse must give everything back (the sanitizer builds check the last two).

#include "TestSupport.h"

#include <mime/KNMimeError.h>
#include <mime/KNMimeHeader.h>
#include <mime/KNMimeHeaderImp.h>
#include <mime/KNMimeMultipart.h>
#include <mime/KNMimePart.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <random>
#include <thread>
#include <vector>

// Blocks handed out by operator new and not yet given back, counted for the whole program:
// a parse and the destruction of what it made must leave the count where it was.
// ThreadSanitizer's runtime brings its own operator new, so the count is left out there.
#if defined(__SANITIZE_THREAD__)
#define KN_COUNT_BLOCKS 0
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define KN_COUNT_BLOCKS 0
#endif
#endif
#ifndef KN_COUNT_BLOCKS
#define KN_COUNT_BLOCKS 1
#endif

namespace {
std::atomic<long> liveBlocks{0};
}

#if KN_COUNT_BLOCKS
void* operator new(std::size_t size)
{
    void* block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr)
        throw std::bad_alloc();
    ++liveBlocks;
    return block;
}

void operator delete(void* block) noexcept
{
    if (block != nullptr) {
        --liveBlocks;
        std::free(block);
    }
}

void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}
#endif

namespace {

KNCString manyHeaders(std::size_t count, std::size_t seed)
{
    std::mt19937 rng(static_cast<std::mt19937::result_type>(seed));
    KNCString text;
    for (std::size_t i = 0; i < count; ++i)
        text += "X-Field-" + std::to_string(i) + ": value " + std::to_string(rng()) + " of field " + std::to_string(i) + "\r\n";
    return text + "\r\nbody";
}

KNCString valueOf(const KNMimeHeader& header)
{
    return header.body()->getValueAsString();
}

} // namespace

TEST(HeaderMemory, HeadersTakenFromAParsedMessageOutliveIt)
{
    std::vector<KNMimeHeader> kept;
    std::vector<KNCString> expected;
    {
        KNMimePart message;
        message.fromString(manyHeaders(3000, 1));
        // Bodies from the first, a middle and the last slab, and a copy made outside a parse.
        for (const std::size_t i : {0u, 1500u, 2999u}) {
            kept.push_back(message.getHeader(i));
            expected.push_back(valueOf(kept.back()));
        }
        kept.push_back(message.getHeader(7).copy());
        expected.push_back(valueOf(kept.back()));
        // Removing and replacing headers frees bodies out of order.
        for (std::size_t i = 0; i < 1000; ++i)
            message.removeHeaderAt(message.getHeaderCount() / 2);
        message.insertHeaderAt(0, KNMimeHeader("Subject"));
        EXPECT_EQ(message.getHeaderCount(), 2001u);
        EXPECT_EQ(message.getHeader(0).getLabel(), "Subject");
    }
    EXPECT_EQ(expected[0], "value 1791095845 of field 0");
    for (std::size_t i = 0; i < kept.size(); ++i)
        EXPECT_EQ(valueOf(kept[i]), expected[i]);
    kept.clear(); // the last bodies of their slabs go now
}

TEST(HeaderMemory, EverythingAParseMadeIsGivenBack)
{
    if (!KN_COUNT_BLOCKS)
        GTEST_SKIP() << "operator new belongs to the sanitizer here";
    KNMimeHeader("X-First"); // the header factory is made on first use and kept for good
    const long before = liveBlocks;
    {
        KNMimePart message;
        message.fromString(manyHeaders(5000, 3)); // slabs up to their largest size
        KNMimeHeader kept = message.getHeader(4000);
        message = KNMimePart();
        EXPECT_GT(liveBlocks, before); // the kept header's slab
        EXPECT_EQ(valueOf(kept).substr(0, 6), "value ");
        KNMimePart failed;
        KNCString unended = manyHeaders(300, 4);
        unended.resize(unended.find("\r\n\r\n") + 2); // 300 headers, no empty line
        EXPECT_THROW(failed.fromString(unended), KNMimeParseError);
        EXPECT_THROW(failed.fromString("A: b\r\nbad\r\n\r\n"), KNMimeParseError);
    }
    EXPECT_EQ(liveBlocks, before);
}

TEST(HeaderMemory, BodiesOfOneParseAreFreedOnOtherThreads)
{
    // Each round parses messages on this thread and frees them, and copies of their headers,
    // on several threads at once.
    for (int round = 0; round < 20; ++round) {
        std::vector<KNMimePart> messages(4);
        for (std::size_t m = 0; m < messages.size(); ++m)
            messages[m].fromString(manyHeaders(200 + 50 * m, round * 10 + m));
        std::vector<std::thread> threads;
        std::vector<std::size_t> counted(messages.size());
        for (std::size_t m = 0; m < messages.size(); ++m) {
            threads.emplace_back([&, m] {
                KNMimePart mine = messages[m];
                messages[m] = KNMimePart();
                for (std::size_t i = 0; i < mine.getHeaderCount(); i += 3)
                    counted[m] += valueOf(mine.getHeader(i)).size();
            });
        }
        for (std::thread& t : threads)
            t.join();
        for (const std::size_t c : counted)
            EXPECT_GT(c, 0u);
    }
}

TEST(HeaderMemory, FailedParsesAndNestedParsesGiveEverythingBack)
{
    // A header the parse refuses after thousands were made; a multipart whose body is
    // parsed again from inside a parse's result; headers made by hand in between.
    KNMimePart part;
    const KNCString bad = manyHeaders(2000, 5).insert(0, "no colon here\r\n");
    EXPECT_EQ(errorText<KNMimeParseError>([&] { part.fromString(bad); }),
              "[MISSING_HEADER_SEPARATOR] Unable to separate label from value");
    const KNCString nested = "Content-Type: multipart/mixed; boundary=b\r\n\r\n--b\r\n" + manyHeaders(500, 6) +
                             "\r\n--b\r\nA: b\r\n\r\nx\r\n--b--\r\n";
    KNMimeMultipart multipart;
    multipart.fromString(nested);
    const KNMimeHeader first = KNMimePart(multipart.getPart(0)).getHeader(0);
    multipart.setBody(KNMimeMultipart(multipart).getBody());
    EXPECT_EQ(multipart.getPartCount(), 2u);
    EXPECT_EQ(valueOf(first), valueOf(KNMimePart(multipart.getPart(0)).getHeader(0)));
    EXPECT_NE(first.body(), KNMimePart(multipart.getPart(0)).getHeader(0).body());
}
