#include <mime/KNMimeError.h>
#include <mime/KNMimeUtils.h>

#include <gtest/gtest.h>

#include <random>

using U = KNMimeUtils;

namespace {

std::vector<KNCString> words(const KNCString& encoded)
{
    std::vector<KNCString> result;
    std::size_t from = 0;
    for (std::size_t at; (at = encoded.find(' ', from)) != KNCString::npos; from = at + 1)
        result.push_back(encoded.substr(from, at - from));
    result.push_back(encoded.substr(from));
    return result;
}

template <class F>
KNCString errorText(F&& f)
{
    try {
        f();
    } catch (const KNMimeError& e) {
        return e.why();
    }
    return "no error";
}

} // namespace

TEST(EncodedWord, EncodeEdgeCases)
{
    EXPECT_EQ(U::headerEncode("", "utf-8", "Q"), "");
    EXPECT_EQ(U::headerEncode("a b_c", "iso-8859-1", "Q"), "=?iso-8859-1?Q?a_b=5Fc?=");
    EXPECT_EQ(U::headerEncode("abc", "utf-8", "b"), "=?utf-8?b?YWJj?=");
    EXPECT_EQ(U::headerEncode("\xe9t\xe9?=\t", "x", "q"), "=?x?q?=E9t=E9=3F=3D=09?=");

    const auto b = words(U::headerEncode(KNCString(100, 'a'), "utf-8", "B"));
    ASSERT_EQ(b.size(), 3u);
    EXPECT_EQ(b[0], "=?utf-8?B?" + U::encodeBase64(KNCString(45, 'a')) + "?=");
    EXPECT_EQ(b[2], "=?utf-8?B?" + U::encodeBase64(KNCString(10, 'a')) + "?=");

    EXPECT_EQ(U::headerEncode(KNCString(63, 'a'), "utf-8", "Q"), "=?utf-8?Q?" + KNCString(63, 'a') + "?=");
    EXPECT_EQ(U::headerEncode(KNCString(64, 'a'), "utf-8", "Q"),
        "=?utf-8?Q?" + KNCString(63, 'a') + "?= =?utf-8?Q?a?=");
    EXPECT_EQ(U::headerEncode(KNCString(61, 'a') + "=", "utf-8", "Q"),
        "=?utf-8?Q?" + KNCString(61, 'a') + "?= =?utf-8?Q?=3D?=");

    std::size_t consumed = 99;
    EXPECT_EQ(U::headerEncodeB("abcd", 4, consumed), "YWJj");
    EXPECT_EQ(consumed, 3u);
    EXPECT_EQ(U::headerEncodeB("ab", 3, consumed), "");
    EXPECT_EQ(consumed, 0u);
    EXPECT_EQ(U::headerEncodeQ("a b=c", 5, consumed), "a_b");
    EXPECT_EQ(consumed, 3u);
    EXPECT_EQ(U::headerEncodeQ("", 5, consumed), "");
    EXPECT_EQ(consumed, 0u);
}

TEST(EncodedWord, EncodeErrors)
{
    EXPECT_EQ(errorText([] { U::headerEncode("x", "utf 8", "Q"); }),
        "[INVALID_CHARSET] The following is not a valid charset:  \"utf 8\"");
    EXPECT_EQ(errorText([] { U::headerEncode("x", "utf-8", "X"); }),
        "[UNKNOWN_ENCODING] The encoding \"X\" is not recognized");
    EXPECT_EQ(errorText([] { U::headerEncode("x", "utf 8", "BB"); }), // encoding checked first
        "[UNKNOWN_ENCODING] The encoding \"BB\" is not recognized");
    // A charset leaving less than four characters of room could never make progress.
    const KNCString longest(64, 'c');
    EXPECT_EQ(U::headerEncode("abcd", longest, "B"), "=?" + longest + "?B?YWJj?= =?" + longest + "?B?ZA==?=");
    EXPECT_EQ(U::headerEncode("\xff", longest, "Q"), "=?" + longest + "?Q?=FF?=");
    const KNCString tooLong(65, 'c');
    for (const char* encoding : {"B", "Q"}) {
        EXPECT_EQ(errorText([&] { U::headerEncode("abc", tooLong, encoding); }),
            "[INVALID_CHARSET] The following is not a valid charset:  \"" + tooLong + "\"");
        EXPECT_THROW(U::headerEncode("", KNCString(100000, 'c'), encoding), KNMimeError);
    }
}

TEST(EncodedWord, Decode)
{
    KNCString cs = "unchanged";
    EXPECT_EQ(U::headerDecode("=?utf-8?Q?a_b=3F?=", cs), "a b?");
    EXPECT_EQ(cs, "utf-8");
    EXPECT_EQ(U::headerDecode("plain", cs), "plain");
    EXPECT_EQ(cs, "US-ASCII");
    EXPECT_EQ(U::headerDecode("x =?a?B?YWJj?= y =?b?Q?z?=", cs), "abc");
    EXPECT_EQ(cs, "a");
    EXPECT_EQ(U::headerDecode("=?=?u?q?hi=?=", cs), "hi="); // leftmost full match
    EXPECT_EQ(cs, "u");
    EXPECT_EQ(U::headerDecode("=?\?Q?x?= =?a?Q?\?= =?a?Q?x?", cs), "=?\?Q?x?= =?a?Q?\?= =?a?Q?x?");
    EXPECT_EQ(U::headerDecodeQ("a_b=5F=zz_"), "a b_=zz ");
    EXPECT_EQ(errorText([&] { U::headerDecode("=?a?X?b?=", cs); }),
        "[UNKNOWN_ENCODING] The encoding \"X\" is not recognized");
    cs = "kept";
    EXPECT_THROW(U::headerDecode("=?a?B?YW Jj?=", cs), KNMimeParseError);
    EXPECT_EQ(cs, "kept");

    // Inputs built to make a careless scan quadratic.
    KNCString hostile;
    for (int i = 0; i < 100000; ++i)
        hostile += "=?";
    EXPECT_THROW(U::headerDecode(hostile, cs), KNMimeError); // "=?=?=?=?=" has encoding "="
    hostile.clear();
    for (int i = 0; i < 100000; ++i)
        hostile += "=?a";
    EXPECT_EQ(U::headerDecode(hostile, cs), hostile);
    hostile = "=?";
    for (int i = 0; i < 100000; ++i)
        hostile += "a?";
    EXPECT_EQ(U::headerDecode(hostile, cs), hostile);
}

TEST(EncodedWord, RoundTripThroughWords)
{
    std::mt19937 rng(47);
    const KNCString charsetBytes = "abcdefghijklmnopqrstuvwxyz0123456789-_";
    for (int round = 0; round < 1000; ++round) {
        KNCString text(rng() % 200, '\0');
        for (char& c : text)
            c = static_cast<char>(round % 2 ? rng() % 256 : ' ' + rng() % 95);
        KNCString charset(1 + rng() % 40, 'x');
        for (char& c : charset)
            c = charsetBytes[rng() % charsetBytes.size()];
        const KNCString encoding = round % 4 < 2 ? "B" : "q";

        const KNCString encoded = U::headerEncode(text, charset, encoding);
        KNCString decoded;
        if (text.empty()) {
            EXPECT_EQ(encoded, "");
            continue;
        }
        for (const KNCString& word : words(encoded)) {
            EXPECT_LE(word.size(), 75u);
            KNCString cs;
            decoded += U::headerDecode(word, cs);
            EXPECT_EQ(cs, charset);
        }
        EXPECT_EQ(decoded, text) << encoded;
        // The same words come out of the header tokenizer.
        EXPECT_EQ(U::tokenizeHeader(encoded, false), words(encoded));
    }
}
