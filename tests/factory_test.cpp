// The header factory: which body a label gets, registrations, and use from many threads.
#include <foundation/KNTHRInvalidPointer.h>
#include <mime/KNMimeContentDispositionHeader.h>
#include <mime/KNMimeContentDispositionHeaderImp.h>
#include <mime/KNMimeContentTransferEncodingHeaderImp.h>
#include <mime/KNMimeContentTypeHeader.h>
#include <mime/KNMimeContentTypeHeaderImp.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeGenericHeader.h>
#include <mime/KNMimeHeader.h>
#include <mime/KNMimeHeaderFactory.h>
#include <mime/KNMimeHeaderImp.h>
#include <mime/KNMimeStructuredHeaderImp.h>
#include <mime/KNMimeUnstructuredHeaderImp.h>
#include <mime/KNMimeVersionHeader.h>
#include <mime/KNMimeVersionHeaderImp.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <typeinfo>
#include <vector>

namespace {

using Factory = KNTCountingPointer<KNMimeHeaderFactory, KNAtomicCounter>;

const std::type_info& bodyClass(const KNMimeHeader& header)
{
    const KNMimeHeaderImp& body = *header.body();
    return typeid(body);
}

template <class E, class F>
KNCString errorText(F action)
{
    try {
        action();
    } catch (const E& e) {
        return e.why();
    }
    ADD_FAILURE() << "nothing thrown";
    return KNCString();
}

// Lets `count` threads go at once, so that they really meet inside the code under test.
class StartingLine {
public:
    explicit StartingLine(int count) : waiting_(count) {}
    void arriveAndWait()
    {
        waiting_.fetch_sub(1);
        while (waiting_.load() > 0)
            std::this_thread::yield();
    }

private:
    std::atomic<int> waiting_;
};

// First in this program on purpose: the factory does not exist yet when the threads start.
TEST(KNMimeHeaderFactoryThreadTest, ConcurrentFirstUseMakesOneFactory)
{
    constexpr int threadCount = 16;
    StartingLine start(threadCount);
    std::vector<Factory> seen(threadCount);
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([&, t] {
            start.arriveAndWait();
            seen[t] = KNMimeHeaderFactory::instance();
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    ASSERT_NE(seen[0].get(), nullptr);
    for (const Factory& factory : seen)
        EXPECT_EQ(factory.get(), seen[0].get());
    EXPECT_EQ(KNMimeHeaderFactory::instance().get(), seen[0].get());
    EXPECT_GE(seen[0].useCount(), threadCount + 1);
}

TEST(KNMimeHeaderFactoryThreadTest, ManyThreadsCreateAndParseHeadersAtOnce)
{
    struct Case {
        const char* line;
        const std::type_info& body;
        const char* printed;
    };
    const std::vector<Case> cases = {
        {"content-type: text/html; charset=utf-8", typeid(KNMimeContentTypeHeaderImp),
         "content-type: text/html; charset=\"utf-8\""},
        {"MIME-Version: 1.0 (generated)", typeid(KNMimeVersionHeaderImp), "MIME-Version: 1.0"},
        {"Content-Transfer-Encoding: Base64", typeid(KNMimeContentTransferEncodingHeaderImp),
         "Content-Transfer-Encoding: Base64"},
        {"CONTENT-ID: <x@y>", typeid(KNMimeStructuredHeaderImp), "CONTENT-ID: <x@y>"},
        {"Subject: =?utf-8?Q?caf=C3=A9?=", typeid(KNMimeUnstructuredHeaderImp), "Subject: =?utf-8?Q?caf=C3=A9?="},
        {"Content-Disposition: attachment; filename=a.txt", typeid(KNMimeContentDispositionHeaderImp),
         "Content-Disposition: attachment; filename=\"a.txt\""},
    };
    const KNMimeHeader shared = KNMimeContentTypeHeader();
    constexpr int threadCount = 8;
    constexpr int rounds = 300;
    StartingLine start(threadCount);
    std::atomic<int> mismatches{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([&, t] {
            start.arriveAndWait();
            for (int i = 0; i < rounds; ++i) {
                const Case& c = cases[(t + i) % cases.size()];
                KNMimeHeader header;
                header.fromString(c.line);
                const KNMimeHeader sharing = shared;
                const bool ok = bodyClass(header) == c.body && header.asString() == c.printed &&
                                header == header.copy() && sharing.asString() == "Content-Type: text/plain" &&
                                KNMimeVersionHeader().getMajorVersion() == 1 &&
                                KNMimeGenericHeader().checkLabel("X-Mailer") &&
                                bodyClass(KNMimeHeaderFactory::instance()->create("X-Mailer")) ==
                                    typeid(KNMimeUnstructuredHeaderImp);
                if (!ok)
                    mismatches.fetch_add(1);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(mismatches.load(), 0);
}

// Every test that changes registrations runs in this fixture, which puts the built-in
// registrations back afterwards.
class KNMimeHeaderFactoryTest : public ::testing::Test {
protected:
    Factory factory = KNMimeHeaderFactory::instance();

    void TearDown() override
    {
        for (const char* label : {"X-Custom", "Content-Description", "Content-Disposition", "Content-Id",
                                  "Content-Location", "Content-Transfer-Encoding", "Content-Type", "MIME-Version"})
            factory->unsetHeaderFunctor(label);
        factory->setDefaultHeaderFunctor(&KNMimeUnstructuredHeaderImp::make);
        factory->setHeaderFunctor("Content-Description", &KNMimeUnstructuredHeaderImp::make);
        factory->setHeaderFunctor("Content-Disposition", &KNMimeContentDispositionHeaderImp::make);
        factory->setHeaderFunctor("Content-Id", &KNMimeStructuredHeaderImp::make);
        factory->setHeaderFunctor("Content-Location", &KNMimeStructuredHeaderImp::make);
        factory->setHeaderFunctor("Content-Transfer-Encoding", &KNMimeContentTransferEncodingHeaderImp::make);
        factory->setHeaderFunctor("Content-Type", &KNMimeContentTypeHeaderImp::make);
        factory->setHeaderFunctor("MIME-Version", &KNMimeVersionHeaderImp::make);
    }
};

TEST_F(KNMimeHeaderFactoryTest, ChoosesTheBodyByLabelIgnoringCase)
{
    const std::vector<std::pair<const char*, const std::type_info*>> table = {
        {"Content-Description", &typeid(KNMimeUnstructuredHeaderImp)},
        {"Content-Disposition", &typeid(KNMimeContentDispositionHeaderImp)},
        {"Content-ID", &typeid(KNMimeStructuredHeaderImp)},
        {"Content-Location", &typeid(KNMimeStructuredHeaderImp)},
        {"Content-Transfer-Encoding", &typeid(KNMimeContentTransferEncodingHeaderImp)},
        {"Content-Type", &typeid(KNMimeContentTypeHeaderImp)},
        {"MIME-Version", &typeid(KNMimeVersionHeaderImp)},
        {"X-Custom", &typeid(KNMimeUnstructuredHeaderImp)},
        {"", &typeid(KNMimeUnstructuredHeaderImp)},
    };
    for (const auto& [label, body] : table) {
        const KNCString lower = knToLower(label);
        KNCString mixed = label;
        for (std::size_t i = 0; i < mixed.size(); i += 2)
            mixed[i] = static_cast<char>(lower[i] ^ ((lower[i] >= 'a' && lower[i] <= 'z') ? 0x20 : 0));
        for (const KNCString& spelling : {KNCString(label), lower, mixed}) {
            const KNMimeHeader made = factory->create(spelling);
            EXPECT_TRUE(bodyClass(made) == *body) << spelling;
            EXPECT_EQ(made.getLabel(), "") << spelling;
            EXPECT_EQ(factory->contains(spelling), *body != typeid(KNMimeUnstructuredHeaderImp) ||
                                                       lower == "content-description")
                << spelling;
        }
    }
    EXPECT_EQ(KNMimeHeaderFactory::instance().get(), factory.get());
}

TEST_F(KNMimeHeaderFactoryTest, FirstRegistrationWinsUntilUnset)
{
    int calls = 0;
    const KNMimeHeaderFactory::Creator custom = [&calls] {
        ++calls;
        return KNMimeStructuredHeaderImp::make();
    };
    factory->setHeaderFunctor("Content-Type", custom);
    EXPECT_TRUE(bodyClass(KNMimeHeader("Content-Type")) == typeid(KNMimeContentTypeHeaderImp));
    EXPECT_EQ(calls, 0);

    factory->unsetHeaderFunctor("CONTENT-type");
    factory->unsetHeaderFunctor("X-Never-Registered");
    EXPECT_FALSE(factory->contains("Content-Type"));
    EXPECT_TRUE(bodyClass(KNMimeHeader("Content-Type")) == typeid(KNMimeUnstructuredHeaderImp));

    factory->setHeaderFunctor("content-TYPE", custom);
    KNMimeHeader parsed;
    parsed.fromString("Content-Type: anything at all");
    EXPECT_TRUE(bodyClass(parsed) == typeid(KNMimeStructuredHeaderImp));
    EXPECT_EQ(calls, 1);
    // The typed handle still converts (only labels are checked) but has no typed body.
    const KNMimeContentTypeHeader typed(parsed);
    EXPECT_EQ(errorText<KNTHRInvalidPointer>([&] { typed.getContentType(); }), "Invalid pointer");
}

TEST_F(KNMimeHeaderFactoryTest, ApplicationLabelsAndUnsetBuiltIns)
{
    factory->setHeaderFunctor("X-Custom", &KNMimeVersionHeaderImp::make);
    KNMimeHeader custom;
    custom.fromString("x-custom: 3.4");
    EXPECT_EQ(custom.asString(), "x-custom: 3.4");
    EXPECT_EQ(errorText<KNMimeError>([] { KNMimeGenericHeader("X-CUSTOM", "v"); }),
              "[KNOWN_HEADER_TYPE] Cannot create KNMimeGenericHeader for known type \"X-CUSTOM\"");

    factory->unsetHeaderFunctor("Content-Disposition");
    KNMimeHeader disposition;
    disposition.fromString("Content-Disposition: attachment; filename");
    EXPECT_TRUE(bodyClass(disposition) == typeid(KNMimeUnstructuredHeaderImp));
    EXPECT_EQ(disposition.asString(), "Content-Disposition: attachment; filename");
    EXPECT_EQ(errorText<KNTHRInvalidPointer>([] { KNMimeContentDispositionHeader().body(); }), "Invalid pointer");
    EXPECT_NO_THROW(KNMimeGenericHeader("Content-Disposition", "inline"));
}

TEST_F(KNMimeHeaderFactoryTest, DefaultCreatorCanBeReplacedOrEmptied)
{
    factory->setDefaultHeaderFunctor([]() -> KNMimeHeader { throw KNMimeError(KNCString("no creator")); });
    EXPECT_EQ(errorText<KNMimeError>([] { KNMimeHeader().fromString("X-A: b"); }), "no creator");

    factory->setDefaultHeaderFunctor(KNMimeHeaderFactory::Creator());
    EXPECT_EQ(errorText<KNTHRInvalidPointer>([&] { factory->create("X-Unknown"); }), "Invalid pointer");
    EXPECT_EQ(errorText<KNTHRInvalidPointer>([] { KNMimeHeader(); }), "Invalid pointer");
    EXPECT_TRUE(bodyClass(factory->create("Content-Type")) == typeid(KNMimeContentTypeHeaderImp));
    // Content-Description holds a creator of its own, which replacing the default leaves alone.
    EXPECT_TRUE(bodyClass(factory->create("Content-Description")) == typeid(KNMimeUnstructuredHeaderImp));

    factory->setDefaultHeaderFunctor(&KNMimeStructuredHeaderImp::make);
    EXPECT_TRUE(bodyClass(KNMimeHeader("X-Unknown")) == typeid(KNMimeStructuredHeaderImp));
}

} // namespace
