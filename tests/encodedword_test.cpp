#include <mime/KNMimeError.h>
#include <mime/KNMimeUtils.h>

#include <gtest/gtest.h>

#include <string>
#include <tests/TestSupport.h>

#include <random>
#include <typeinfo>

using U = KNMimeUtils;

TEST(EncodedWord, EncodeSplitsWordsByRoomAndGuardsTheCharset)
{
    EXPECT_EQ(U::headerEncode("", "utf-8", "Q"), "");
    std::size_t consumed = 99;
    EXPECT_EQ(U::headerEncodeB("abcdef", 5, consumed), "YWJj");
    EXPECT_EQ(consumed, 3u);
    EXPECT_EQ(U::headerEncodeQ("a=b", 3, consumed), "a");
    EXPECT_EQ(consumed, 1u);
    EXPECT_EQ(U::headerEncode("a b_c", "iso-8859-1", "Q"), "=?iso-8859-1?Q?a_b=5Fc?=");
    EXPECT_EQ(U::headerEncode("\xe9t\xe9?=\t", "x", "q"), "=?x?q?=E9t=E9=3F=3D=09?="); // the letter keeps its case
    const auto b = [](std::size_t n) { return "=?utf-8?B?" + U::encodeBase64(KNCString(n, 'a')) + "?="; };
    EXPECT_EQ(U::headerEncode(KNCString(100, 'a'), "utf-8", "B"), b(45) + " " + b(45) + " " + b(10));
    const auto q = [](const KNCString& body) { return "=?utf-8?Q?" + body + "?="; };
    EXPECT_EQ(U::headerEncode(KNCString(64, 'a'), "utf-8", "Q"), q(KNCString(63, 'a')) + " " + q("a"));
    EXPECT_EQ(U::headerEncode(KNCString(61, 'a') + "=", "utf-8", "Q"), q(KNCString(61, 'a')) + " " + q("=3D"));
    EXPECT_EQ(errorText<KNMimeError>([] { U::headerEncode("x", "utf 8", "Q"); }),
        "[INVALID_CHARSET] The following is not a valid charset:  \"utf 8\"");
    EXPECT_EQ(errorText<KNMimeError>([] { U::headerEncode("x", "utf 8", "BB"); }), // encoding checked first
        "[UNKNOWN_ENCODING] The encoding \"BB\" is not recognized");
    // A charset leaving less than four characters of room could never make progress; 64 still works.
    for (const char* encoding : {"B", "Q"}) {
        EXPECT_EQ(errorText<KNMimeError>([&] { U::headerEncode("abc", KNCString(65, 'c'), encoding); }),
            "[INVALID_CHARSET] The following is not a valid charset:  \"" + KNCString(65, 'c') + "\"");
        EXPECT_THROW(U::headerEncode("", KNCString(100000, 'c'), encoding), KNMimeError);
    }
}

TEST(EncodedWord, DecodeFirstWordOnly)
{
    const auto decode = [](const KNCString& text) {
        KNCString cs = "unchanged";
        const KNCString decoded = U::headerDecode(text, cs);
        return decoded + " in " + cs;
    };
    EXPECT_EQ(decode("=?utf-8?Q?a_b=3F?="), "a b? in utf-8");
    EXPECT_EQ(decode("plain"), "plain in US-ASCII");
    EXPECT_EQ(decode("x =?a?B?YWJj?= y =?b?Q?z?="), "abc in a"); // the rest is dropped
    EXPECT_EQ(decode("=?=?u?q?hi=?="), "hi= in u");              // leftmost full match
    EXPECT_EQ(decode("=?\?Q?x?= =?a?Q?\?= =?a?Q?x?"), "=?\?Q?x?= =?a?Q?\?= =?a?Q?x? in US-ASCII");
    EXPECT_EQ(U::headerDecodeQ("a_b=5F=zz_"), "a b_=zz ");
    KNCString cs = "kept";
    EXPECT_EQ(errorText<KNMimeError>([&] { U::headerDecode("=?=?=?=?=", cs); }),
        "[UNKNOWN_ENCODING] The encoding \"=\" is not recognized");
    EXPECT_EQ(errorText<KNMimeParseError>([&] { U::headerDecode("=?a?B?YW Jj?=", cs); }),
        "[INVALID_BASE64_CHAR] ' ' is not a valid base64 character");
    EXPECT_EQ(cs, "kept");

    // Many starts and no end: looking for the end again from every start would be quadratic.
    KNCString starts;
    for (int i = 0; i < 100000; ++i)
        starts += "=?a";
    EXPECT_EQ(U::headerDecode(starts, cs), starts);
}

TEST(EncodedWord, RoundTripThroughWordsAndTokenizer)
{
    std::mt19937 rng(47);
    for (int round = 0; round < 1000; ++round) {
        KNCString text(1 + rng() % 200, '\0');
        for (char& c : text)
            c = static_cast<char>(round % 2 ? rng() % 256 : ' ' + rng() % 95);
        const KNCString charset(1 + rng() % 64, 'c'); // its length sets the room per word, down to 4
        const KNCString encoded = U::headerEncode(text, charset, round % 4 < 2 ? "B" : "q");
        KNCString decoded, rejoined;
        for (const KNCString& word : U::tokenizeHeader(encoded, false)) {
            EXPECT_LE(word.size(), 75u);
            KNCString cs;
            decoded += U::headerDecode(word, cs);
            EXPECT_EQ(cs, charset);
            rejoined += (rejoined.empty() ? "" : " ") + word;
        }
        EXPECT_EQ(rejoined, encoded); // single blanks between the words, which the tokenizer finds
        EXPECT_EQ(decoded, text);
    }
}
