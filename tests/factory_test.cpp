// The header factory: which body a label gets, registrations, and use from many threads.
#include <foundation/KNTHRInvalidPointer.h>
#include <mime/KNMimeContentDispositionHeaderImp.h>
#include <mime/KNMimeContentTransferEncodingHeaderImp.h>
#include <mime/KNMimeContentTypeHeader.h>
#include <mime/KNMimeGenericHeader.h>
#include <mime/KNMimeHeaderFactory.h>
#include <mime/KNMimeStructuredHeaderImp.h>
#include <mime/KNMimeVersionHeaderImp.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cctype>
#include <functional>
#include <iterator>
#include <map>
#include <random>
#include <thread>
#include <tuple>
#include <typeinfo>
#include <vector>

namespace {

using Factory = KNTCountingPointer<KNMimeHeaderFactory, KNAtomicCounter>;

const std::type_info& bodyClass(const KNMimeHeader& header)
{
    const KNMimeHeaderImp& body = *header.body();
    return typeid(body);
}

// Runs `work(thread index)` on threads released at once, so that they meet in the code under test.
template <class F>
void runTogether(int count, F work)
{
    std::atomic<int> waiting{count};
    std::vector<std::thread> threads;
    for (int t = 0; t < count; ++t) {
        threads.emplace_back([&, t] {
            for (--waiting; waiting.load() > 0;)
                std::this_thread::yield();
            work(t);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

// First in this program on purpose: the factory does not exist yet when the threads start.
TEST(KNMimeHeaderFactoryThreadTest, ConcurrentFirstUseMakesOneFactory)
{
    constexpr int threadCount = 16;
    std::vector<Factory> seen(threadCount);
    runTogether(threadCount, [&](int t) { seen[t] = KNMimeHeaderFactory::instance(); });
    ASSERT_NE(seen[0].get(), nullptr);
    for (const Factory& factory : seen)
        EXPECT_EQ(factory.get(), seen[0].get());
    EXPECT_GE(seen[0].useCount(), threadCount + 1);
}

TEST(KNMimeHeaderFactoryThreadTest, ManyThreadsCreateAndParseHeadersAtOnce)
{
    const KNCString lines[] = {"content-type: text/html; charset=utf-8", "MIME-Version: 1.0 (generated)",
                               "Content-Transfer-Encoding: Base64", "CONTENT-ID: <x@y>", "Subject: =?utf-8?Q?x?=",
                               "Content-Disposition: attachment; filename=a.txt"};
    // What each line gives when parsed by one thread alone.
    std::vector<KNMimeHeader> alone(std::size(lines));
    for (std::size_t i = 0; i < alone.size(); ++i)
        alone[i].fromString(lines[i]);
    const KNMimeHeader shared = KNMimeContentTypeHeader();
    std::atomic<int> mismatches{0};
    runTogether(8, [&](int t) {
        for (int i = 0; i < 300; ++i) {
            const KNMimeHeader& expected = alone[(t + i) % alone.size()];
            KNMimeHeader header;
            header.fromString(lines[(t + i) % alone.size()]);
            const KNMimeHeader sharing = shared;
            mismatches += !(bodyClass(header) == bodyClass(expected) && header == expected &&
                            header.copy() == expected && sharing == KNMimeContentTypeHeader() &&
                            KNMimeGenericHeader().checkLabel("X-Mailer"));
        }
    });
    EXPECT_EQ(mismatches.load(), 0);
}

// Every test that changes registrations runs in this fixture, which puts the built-in
// registrations back afterwards.
class KNMimeHeaderFactoryTest : public ::testing::Test {
protected:
    Factory factory = KNMimeHeaderFactory::instance();

    void TearDown() override
    {
        for (const char* label : {"Content-Description", "Content-Disposition", "Content-Id", "Content-Location",
                                  "Content-Transfer-Encoding", "Content-Type", "MIME-Version"})
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
    const std::tuple<const char*, const std::type_info&, bool> table[] = {
        {"Content-Description", typeid(KNMimeUnstructuredHeaderImp), true},
        {"Content-Disposition", typeid(KNMimeContentDispositionHeaderImp), true},
        {"Content-ID", typeid(KNMimeStructuredHeaderImp), true},
        {"Content-Location", typeid(KNMimeStructuredHeaderImp), true},
        {"Content-Transfer-Encoding", typeid(KNMimeContentTransferEncodingHeaderImp), true},
        {"Content-Type", typeid(KNMimeContentTypeHeaderImp), true},
        {"MIME-Version", typeid(KNMimeVersionHeaderImp), true},
        // Unknown labels are made by the default creator but are not registered.
        {"X-Custom", typeid(KNMimeUnstructuredHeaderImp), false},
    };
    for (const auto& [label, body, registered] : table) {
        for (const KNCString& spelling : {KNCString(label), knToLower(label)}) {
            const KNMimeHeader made = factory->create(spelling);
            EXPECT_TRUE(bodyClass(made) == body && made.getLabel().empty()) << spelling;
            EXPECT_EQ(factory->contains(spelling), registered) << spelling;
        }
    }
}

TEST_F(KNMimeHeaderFactoryTest, FirstRegistrationWinsUntilUnsetButTheDefaultIsReplaced)
{
    factory->setHeaderFunctor("Content-Type", &KNMimeStructuredHeaderImp::make);
    EXPECT_TRUE(bodyClass(KNMimeHeader("Content-Type")) == typeid(KNMimeContentTypeHeaderImp));

    factory->unsetHeaderFunctor("CONTENT-type");
    factory->unsetHeaderFunctor("X-Never-Registered");
    EXPECT_TRUE(bodyClass(KNMimeHeader("Content-Type")) == typeid(KNMimeUnstructuredHeaderImp));
    factory->setHeaderFunctor("content-TYPE", &KNMimeStructuredHeaderImp::make);
    KNMimeHeader parsed;
    parsed.fromString("Content-Type: anything at all");
    EXPECT_TRUE(bodyClass(parsed) == typeid(KNMimeStructuredHeaderImp));

    // The default creator, unlike the others, is always replaced.
    factory->setDefaultHeaderFunctor([]() -> KNMimeHeader { throw 42; });
    EXPECT_THROW(KNMimeHeader().fromString("X-A: b"), int);

    factory->setDefaultHeaderFunctor(KNMimeHeaderFactory::Creator());
    EXPECT_THROW(factory->create("X-Unknown"), KNTHRInvalidPointer);
    factory->setDefaultHeaderFunctor(std::function<KNMimeHeader()>());
    EXPECT_THROW(KNMimeHeader("X-Unknown"), KNTHRInvalidPointer); // not std::bad_function_call
    // Content-Description holds a creator of its own, which replacing the default leaves alone.
    EXPECT_TRUE(bodyClass(factory->create("Content-Description")) == typeid(KNMimeUnstructuredHeaderImp));
}

TEST_F(KNMimeHeaderFactoryTest, LookupsAgreeWithALowerCasedMapOnRandomRegistrations)
{
    // Labels of a few lengths sharing first bytes and prefixes, in random case, registered,
    // looked up and unset at random; a map of lower-cased labels says what must happen.
    std::mt19937 rng(23);
    const KNCString stems[] = {"X", "Xa", "XB", "x-a", "X-Ab", "Content", "Content-Typ", "Content-Typf", "content-type2",
                               "M", "Mime", "mime-versioM", "MIME-Versio", "B", ""};
    auto spelled = [&](const KNCString& stem) {
        KNCString s = stem;
        for (char& c : s)
            if (rng() % 2)
                c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        return s;
    };
    std::map<KNCString, bool> model; // lower-cased label -> registered by this test
    for (int step = 0; step < 3000; ++step) {
        const KNCString& stem = stems[rng() % std::size(stems)];
        const KNCString label = spelled(stem);
        switch (rng() % 3) {
        case 0:
            factory->setHeaderFunctor(label, &KNMimeStructuredHeaderImp::make);
            model[knToLower(label)] = true;
            break;
        case 1:
            factory->unsetHeaderFunctor(label);
            model.erase(knToLower(label));
            break;
        default:
            break;
        }
        for (const KNCString& other : stems) {
            const KNCString probe = spelled(other);
            const bool registered = model.count(knToLower(probe)) != 0;
            ASSERT_EQ(factory->contains(probe), registered) << probe << " at step " << step;
            ASSERT_TRUE(bodyClass(factory->create(probe)) ==
                        (registered ? typeid(KNMimeStructuredHeaderImp) : typeid(KNMimeUnstructuredHeaderImp)))
                << probe;
        }
    }
    for (const auto& entry : model)
        factory->unsetHeaderFunctor(entry.first);
}

} // namespace