// The platform layer: messages, errors, handles, the counted pointer and the functor.
#include <foundation/KNBoundsErr.h>
#include <foundation/KNCString.h>
#include <foundation/KNHandleBase.h>
#include <foundation/KNMessage.h>
#include <foundation/KNSubstringFinder.h>
#include <foundation/KNTCountingPointer.h>
#include <foundation/KNTFunctorR0.h>
#include <foundation/KNTHRInvalidPointer.h>

#include <gtest/gtest.h>

#include <cctype>

#include <atomic>
#include <functional>
#include <random>
#include <thread>
#include <typeinfo>
#include <vector>

namespace {

const KNCatMsg testMessage{"test_", 7, "[TEST] %s has %d items and '%c' %u"};

TEST(KNMessageTest, FormatsPrintfStyleWithStringArguments)
{
    const KNCString name = "list";
    EXPECT_EQ(KNMessage(&testMessage, name, 3, 'x', 42u).str(), "[TEST] list has 3 items and 'x' 42");
    EXPECT_EQ(KNMessage(&testMessage, "abc", -1, '*', 0u).str(), "[TEST] abc has -1 items and '*' 0");
    const KNCatMsg plain{"test_", 8, "no placeholders"};
    EXPECT_EQ(KNMessage(&plain).str(), "no placeholders");
    const KNCatMsg bare{"test_", 10, "%s"};
    EXPECT_EQ(KNMessage(&bare, "x").str() + "|" + KNMessage(&bare, "").str(), "x|");
}

TEST(KNMessageTest, CatalogueLookupTranslatesAndFallsBack)
{
    KNMessage::setCatalogueLookup([](const char* domain, std::int32_t number) -> const char* {
        return (KNCString(domain) == "test_" && number == 7) ? "[TEST] %s (translated)" : nullptr;
    });
    EXPECT_EQ(KNMessage(&testMessage, "x").str(), "[TEST] x (translated)");
    const KNCatMsg other{"test_", 9, "untranslated %s"};
    EXPECT_EQ(KNMessage(&other, "y").str(), "untranslated y");
    KNMessage::setCatalogueLookup(nullptr);
    EXPECT_EQ(KNMessage(&other, "y").str(), "untranslated y");
}

TEST(KNxmsgTest, RaiseThrowsTheMostDerivedType)
{
    const KNBoundsErr bounds(4, 3);
    EXPECT_EQ(bounds.why(), "index 4 out of range [0, 3)");
    EXPECT_STREQ(bounds.what(), "index 4 out of range [0, 3)");
    const KNxmsg& base = bounds;
    EXPECT_THROW(base.raise(), KNBoundsErr);
    EXPECT_EQ(KNTHRInvalidPointer().why(), "Invalid pointer");
    EXPECT_THROW(static_cast<const KNxmsg&>(KNTHRInvalidPointer()).raise(), KNTHRInvalidPointer);
    // The base class throws a copy of itself too.
    const KNxmsg plain(KNCString("plain text"));
    try {
        plain.raise();
        ADD_FAILURE() << "raise() returned";
    } catch (const KNxmsg& e) {
        EXPECT_TRUE(typeid(e) == typeid(KNxmsg));
        EXPECT_EQ(e.why(), "plain text");
    }
}

TEST(KNCStringTest, CaseHelpersAreAsciiOnly)
{
    EXPECT_TRUE(knEqualsIgnoreCase("Content-TYPE", "content-type"));
    EXPECT_FALSE(knEqualsIgnoreCase("abc", "abcd"));
    EXPECT_FALSE(knEqualsIgnoreCase("\xc3\x89", "\xc3\xa9")); // no locale folding of 8-bit bytes
    EXPECT_EQ(knToLower("MiXeD-\x01\xff Z"), KNCString("mixed-\x01\xff z"));
    EXPECT_EQ(knHash("abc"), knHash(KNCString("abc")));
    // Equal words are skipped eight bytes at a time: a difference, or only a difference of
    // case, at every offset of every length up to three words and a tail.
    for (std::size_t n = 0; n <= 27; ++n) {
        const KNCString word = KNCString("aB@`zZ[{-_09Qq\x80\xe9").substr(0, 16) + KNCString("Mixed-Label").substr(0, 11);
        const KNCString a = word.substr(0, n);
        for (std::size_t at = 0; at < n; ++at) {
            KNCString caseOnly = a;
            caseOnly[at] = static_cast<char>(std::isalpha(static_cast<unsigned char>(a[at])) ? a[at] ^ 0x20 : a[at]);
            EXPECT_TRUE(knEqualsIgnoreCase(a, caseOnly)) << n << ' ' << at;
            KNCString other = a;
            other[at] = static_cast<char>(a[at] ^ 0x40); // never only a change of case
            EXPECT_FALSE(knEqualsIgnoreCase(a, other)) << n << ' ' << at;
            other = a;
            other[at] = static_cast<char>(a[at] ^ 0x20); // '@' and '`', '[' and '{' differ
            EXPECT_EQ(knEqualsIgnoreCase(a, other), std::isalpha(static_cast<unsigned char>(a[at])) != 0) << n << ' ' << at;
        }
    }
}

struct CountedBody : KNBodyBase {
    explicit CountedBody(std::atomic<int>& alive) : alive_(alive) { ++alive_; }
    ~CountedBody() override { --alive_; }
    std::atomic<int>& alive_;
    int value = 0;
};

struct OtherBody : KNBodyBase {};

class TestHandle : public KNHandleBase {
public:
    explicit TestHandle(KNBodyBase* body) : KNHandleBase(body) {}
    CountedBody* body() const { return bodyAs<CountedBody>(); }
    using KNHandleBase::rebind;
};

TEST(KNHandleBaseTest, SharesCountsAndDeletesOnce)
{
    std::atomic<int> alive{0};
    {
        TestHandle a(new CountedBody(alive));
        TestHandle b = a;
        b.body()->value = 5;
        EXPECT_EQ(a.body()->value, 5);
        EXPECT_EQ(a.body()->referenceCount(), 2u);
        TestHandle& alias = a;
        a = alias; // self-assignment keeps the body
        EXPECT_EQ(a.body()->referenceCount(), 2u);
        TestHandle c(new CountedBody(alive));
        EXPECT_EQ(alive, 2);
        c = a; // c's own body was the last reference
        EXPECT_EQ(alive, 1);
        EXPECT_TRUE(c.sharesBodyWith(a));
        TestHandle moved = std::move(b); // takes b's reference: the count does not change
        EXPECT_TRUE(b.isEmpty());
        EXPECT_EQ(a.body()->referenceCount(), 3u);
        moved = std::move(c); // drops its own reference, takes c's
        EXPECT_TRUE(c.isEmpty());
        EXPECT_EQ(a.body()->referenceCount(), 2u);
    }
    EXPECT_EQ(alive, 0);
}

TEST(KNHandleBaseTest, EmptyOrMistypedBodyThrowsInvalidPointer)
{
    TestHandle empty(nullptr);
    EXPECT_TRUE(empty.isEmpty());
    EXPECT_THROW(empty.body(), KNTHRInvalidPointer);
    TestHandle other(new OtherBody);
    EXPECT_THROW(other.body(), KNTHRInvalidPointer);
}

TEST(KNHandleBaseTest, ConcurrentCopiesKeepTheCountExact)
{
    std::atomic<int> alive{0};
    TestHandle shared(new CountedBody(alive));
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&shared] {
            for (int i = 0; i < 20000; ++i) {
                TestHandle copy = shared;
                TestHandle again(copy);
                copy = again;
            }
        });
    }
    for (std::thread& t : threads)
        t.join();
    EXPECT_EQ(shared.body()->referenceCount(), 1u);
    shared.rebind(nullptr);
    EXPECT_EQ(alive, 0);
}

TEST(KNTCountingPointerTest, SharesOwnershipAndRefusesNull)
{
    std::atomic<int> alive{0};
    {
        KNTCountingPointer<CountedBody> p(new CountedBody(alive));
        KNTCountingPointer<CountedBody> q = p;
        EXPECT_EQ(p.useCount(), 2);
        EXPECT_EQ(q.get(), p.get());
        q->value = 3;
        EXPECT_EQ((*p).value, 3);
        KNTCountingPointer<CountedBody> moved = std::move(q);
        EXPECT_EQ(p.useCount(), 2);
        EXPECT_FALSE(q);
    }
    EXPECT_EQ(alive, 0);
    KNTCountingPointer<CountedBody> null;
    EXPECT_THROW((void)null->value, KNTHRInvalidPointer);
    EXPECT_THROW((void)*null, KNTHRInvalidPointer);
    EXPECT_EQ(null.useCount(), 0);
}

int fortyTwo()
{
    return 42;
}

TEST(KNTFunctorR0Test, WrapsCallablesAndSharesTargetsOnCopy)
{
    KNTFunctorR0<int> empty;
    EXPECT_FALSE(empty);
    EXPECT_THROW(empty(), KNTHRInvalidPointer);
    KNTFunctorR0<int> fromPointer(&fortyTwo);
    EXPECT_EQ(fromPointer(), 42);
    int calls = 0;
    KNTFunctorR0<int> fromLambda([&calls] { return ++calls; });
    KNTFunctorR0<int> copy = fromLambda;
    EXPECT_EQ(copy(), 1);
    EXPECT_EQ(fromLambda(), 2);
    EXPECT_TRUE(copy.sharesTargetWith(fromLambda));
    EXPECT_FALSE(copy.sharesTargetWith(fromPointer));
    int (*nullFunction)() = nullptr;
    EXPECT_FALSE(KNTFunctorR0<int>(nullFunction));
    // An empty std::function is empty too: calling throws the library's error, not
    // std::bad_function_call.
    const KNTFunctorR0<int> fromEmptyFunction{std::function<int()>()};
    EXPECT_FALSE(fromEmptyFunction);
    EXPECT_THROW(fromEmptyFunction(), KNTHRInvalidPointer);
    EXPECT_EQ(KNTFunctorR0<int>(std::function<int()>(&fortyTwo))(), 42);
}

TEST(KNSubstringFinderTest, AgreesWithFindOnRandomTexts)
{
    std::mt19937 random(1234);
    for (int round = 0; round < 2000; ++round) {
        const std::size_t textLength = random() % 64;
        const std::size_t needleLength = random() % 6;
        std::string text, needle;
        for (std::size_t i = 0; i < textLength; ++i)
            text += static_cast<char>('a' + random() % 3);
        for (std::size_t i = 0; i < needleLength; ++i)
            needle += static_cast<char>('a' + random() % 3);
        const KNSubstringFinder finder(needle);
        for (std::size_t from = 0; from <= textLength + 1; ++from)
            ASSERT_EQ(finder.find(text, from), text.find(needle, from)) << text << " / " << needle << " @" << from;
    }
    // A match may not run into the NUL that follows a string's bytes.
    EXPECT_EQ(KNSubstringFinder(std::string("a\0", 2)).find(std::string("xa")), std::string_view::npos);
}

} // namespace
