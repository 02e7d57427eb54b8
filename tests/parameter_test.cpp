// Parameters and parameter lists: reading, printing, lookup, replacement and equality.
#include <mime/KNMimeError.h>
#include <mime/KNMimeParameter.h>
#include <mime/KNMimeParameterList.h>
#include <mime/KNMimeUtils.h>

#include <foundation/KNBoundsErr.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

const KNCString missingSeparator =
    "[MISSING_PARAMETER_SEPARATOR] Unable to separate parameter name from value";

KNCString invalidToken(const KNCString& text)
{
    return "[INVALID_TOKEN] The following is not a valid token:  \"" + text + "\"";
}

template <class E, class F>
KNCString thrownText(F action)
{
    try {
        action();
    } catch (const E& e) {
        return e.why();
    }
    return "nothing thrown";
}

KNMimeParameterList listOf(const std::vector<KNMimeParameter>& parameters)
{
    KNMimeParameterList list;
    for (const KNMimeParameter& p : parameters)
        list.insertParameter(p);
    return list;
}

KNMimeParameter parsed(const KNCString& text)
{
    KNMimeParameter p;
    p.fromString(text);
    return p;
}

TEST(KNMimeParameterTest, ReadsNameAndValueAtTheFirstUnquotedEquals)
{
    KNMimeParameter p = parsed(" Charset = \"us-ascii\" (comment)");
    EXPECT_EQ(p.getName(), "Charset");
    EXPECT_EQ(p.getValue(), "us-ascii");
    EXPECT_EQ(parsed("name=\"a\\\"b\"").getValue(), "a\"b");
    p = parsed("a=b=c");
    EXPECT_EQ(p.getName(), "a");
    EXPECT_EQ(p.getValue(), "b=c");
    p = parsed("\"x=y\"(=)z=1");
    EXPECT_EQ(p.getName(), "x=yz");
    EXPECT_EQ(p.getValue(), "1");
    EXPECT_EQ(parsed("a=").getValue(), "");
    EXPECT_EQ(parsed("a=  \t ").getValue(), "");
    EXPECT_EQ(parsed("a=\"\xC3\xA9\\\\ ;\"").getValue(), "\xC3\xA9\\ ;");
}

TEST(KNMimeParameterTest, TextWithoutEqualsIsRefusedAndLeavesTheParameter)
{
    KNMimeParameter p("keep", "me");
    for (const KNCString& text :
         std::vector<KNCString>{"", "   ", "abc", "a\"=\"", "a(=)", "a\"\\\"=", KNCString(100000, '(') + "=x"}) {
        EXPECT_EQ(thrownText<KNMimeParseError>([&] { p.fromString(text); }), missingSeparator) << text;
        EXPECT_EQ(p.getName(), "keep");
        EXPECT_EQ(p.getValue(), "me");
    }
}

TEST(KNMimeParameterTest, PrintsTheValueAlwaysQuotedAndRefusesNonTokenNames)
{
    EXPECT_EQ(KNMimeParameter("a", "").asString(), "a=\"\"");
    EXPECT_EQ(KNMimeParameter("charset", "us-ascii").asString(), "charset=\"us-ascii\"");
    EXPECT_EQ(KNMimeParameter("n", "a\"b\\c;d").asString(), "n=\"a\\\"b\\\\c;d\"");
    EXPECT_EQ(KNMimeParameter("\xE9t\xE9", "x").asString(), "\xE9t\xE9=\"x\"");
    // An empty name is read without complaint and refused only when printed.
    const KNMimeParameter unnamed = parsed("=x");
    EXPECT_EQ(unnamed.getName(), "");
    EXPECT_EQ(unnamed.getValue(), "x");
    EXPECT_EQ(thrownText<KNMimeError>([&] { unnamed.asString(); }), invalidToken(""));
    for (const KNCString name : {"a b", "a;b", "a=b", "a/b", "a\"b", "a\x7f", "a\x01", "(a)"})
        EXPECT_EQ(thrownText<KNMimeError>([&] { KNMimeParameter(name, "v").asString(); }), invalidToken(name));
}

TEST(KNMimeParameterListTest, SplitsAtUnquotedSemicolons)
{
    KNMimeParameterList list;
    list.fromString("a=\"x;y\"; b=2");
    ASSERT_EQ(list.getParameterCount(), 2u);
    EXPECT_EQ(list.getParameter(0).getValue(), "x;y");
    EXPECT_EQ(list.getParameter(1).getName(), "b");
    EXPECT_EQ(list.asString(), "; a=\"x;y\"; b=\"2\"");
    list.fromString("a=1 (x;y); b=2\r\n\t;\r\n c=3;  \r\n ");
    EXPECT_EQ(list.asString(), "; a=\"1\"; b=\"2\"; c=\"3\"");
    // An unclosed quote or comment hides every later ';'.
    list.fromString("a=\"x; b=2");
    ASSERT_EQ(list.getParameterCount(), 1u);
    EXPECT_EQ(list.getParameter(0).getValue(), "x; b=2");
    list.fromString("a=1 (x; b=2");
    ASSERT_EQ(list.getParameterCount(), 1u);
    EXPECT_EQ(list.getParameter(0).getValue(), "1");
    for (const KNCString blank : {"", "  ", "\r\n \t"}) {
        list.fromString(blank);
        EXPECT_EQ(list.getParameterCount(), 0u);
        EXPECT_EQ(list.asString(), "");
    }
}

TEST(KNMimeParameterListTest, FailedParseLeavesTheListAsItWas)
{
    KNMimeParameterList list = listOf({{"keep", "1"}, {"keep", "2"}});
    const KNMimeParameterList before = list;
    for (const KNCString& text : std::vector<KNCString>{"a=1;;b=2", "a=1; ;b=2", ";a=1", " ; ", "a=1; b",
                                                         "a=1; b=2; c", KNCString(200000, ';')}) {
        EXPECT_EQ(thrownText<KNMimeParseError>([&] { list.fromString(text); }), missingSeparator);
        EXPECT_EQ(list.asString(), before.asString());
    }
}

TEST(KNMimeParameterListTest, FindsByNameIgnoringCaseFromAStartPosition)
{
    KNMimeParameterList list = listOf({{"charset", "a"}, {"x", ""}, {"CHARSET", "b"}});
    EXPECT_EQ(list.findParameter("CHARSET", 0), 0u);
    EXPECT_EQ(list.findParameter("charset", 1), 2u);
    EXPECT_EQ(list.findParameter("charset", 3), KNCString::npos);
    EXPECT_EQ(list.findParameter("charset", KNCString::npos), KNCString::npos);
    EXPECT_EQ(list.findParameter("none"), KNCString::npos);
    EXPECT_EQ(list.getParameterValue("Charset"), "a");
    EXPECT_EQ(list.getParameterValue("charset", 1), "b");
    // Absent and present-but-empty read the same; only findParameter tells them apart.
    EXPECT_EQ(list.getParameterValue("none"), "");
    EXPECT_EQ(list.getParameterValue("x"), "");
    EXPECT_EQ(list.findParameter("x"), 1u);
}

TEST(KNMimeParameterListTest, SetValueReplacesTheFirstMatchByAnAppendedPair)
{
    KNMimeParameterList list = listOf({{"a", "1"}, {"b", "2"}, {"A", "3"}});
    list.setParameterValue("A", "9");
    EXPECT_EQ(list.asString(), "; b=\"2\"; A=\"3\"; A=\"9\"");
    list.setParameterValue("a", "7", 1);
    EXPECT_EQ(list.asString(), "; b=\"2\"; A=\"9\"; a=\"7\"");
    list.setParameterValue("b", "");
    EXPECT_EQ(list.asString(), "; A=\"9\"; a=\"7\"");
    list.setParameterValue("none", "");
    EXPECT_EQ(list.asString(), "; A=\"9\"; a=\"7\"");
    list.setParameterValue("none", "", 100);
    list.setParameterValue("a", "x", 100);
    EXPECT_EQ(list.asString(), "; A=\"9\"; a=\"7\"; a=\"x\"");
}

TEST(KNMimeParameterListTest, IndexesOutOfRangeThrowTheBoundsError)
{
    KNMimeParameterList list = listOf({{"a", "1"}, {"b", "2"}, {"c", "3"}});
    EXPECT_EQ(thrownText<KNBoundsErr>([&] { list.getParameter(3); }), "index 3 out of range [0, 3)");
    EXPECT_EQ(thrownText<KNBoundsErr>([&] { list.removeParameter(7); }), "index 7 out of range [0, 3)");
    list.removeParameter(1);
    EXPECT_EQ(list.asString(), "; a=\"1\"; c=\"3\"");
    list.removeAllParameters();
    EXPECT_EQ(thrownText<KNBoundsErr>([&] { list.removeParameter(0); }), "index 0 out of range [0, 0)");
}

TEST(KNMimeParameterListTest, EqualityIgnoresOrderAndMultiplicityButNotLength)
{
    const KNMimeParameter a("a", "1"), b("b", "2"), upperA("A", "1");
    EXPECT_EQ(listOf({a, b}), listOf({b, upperA}));
    EXPECT_EQ(listOf({a, a, b}), listOf({a, b, b}));
    EXPECT_NE(listOf({a, b}), listOf({a, b, b}));
    EXPECT_NE(listOf({a}), listOf({KNMimeParameter("a", "1 ")}));
    EXPECT_NE(listOf({a}), listOf({KNMimeParameter("a", "X")}));
    EXPECT_EQ(KNMimeParameterList(), KNMimeParameterList());
}

// The rule itself, written pairwise: the reference for lists of any length.
bool equalByRule(const KNMimeParameterList& a, const KNMimeParameterList& b)
{
    const auto occurs = [](const KNMimeParameterList& list, const KNMimeParameter& p) {
        for (std::size_t i = 0; i < list.getParameterCount(); ++i)
            if (list.getParameter(i) == p)
                return true;
        return false;
    };
    if (a.getParameterCount() != b.getParameterCount())
        return false;
    for (std::size_t k = 0; k < a.getParameterCount(); ++k)
        if (!occurs(a, b.getParameter(k)) || !occurs(b, a.getParameter(k)))
            return false;
    return true;
}

TEST(KNMimeParameterListTest, EqualityOfLongAndShortListsFollowsTheRule)
{
    std::mt19937 random(20261121);
    const KNCString names[] = {"a", "A", "b", "B"};
    const KNCString values[] = {"1", "2"};
    int equalPairs = 0;
    for (int round = 0; round < 3000; ++round) {
        const std::size_t size = random() % 40;
        KNMimeParameterList left, right;
        for (KNMimeParameterList* list : {&left, &right})
            for (std::size_t i = 0; i < size; ++i)
                list->insertParameter(KNMimeParameter(names[random() % 4], values[random() % 2]));
        ASSERT_EQ(left == right, equalByRule(left, right)) << left.asString() << " vs " << right.asString();
        equalPairs += left == right;
    }
    EXPECT_GT(equalPairs, 100);
}

KNCString randomText(std::mt19937& random, const KNCString& alphabet, std::size_t maxLength)
{
    KNCString text(random() % (maxLength + 1), ' ');
    for (char& c : text)
        c = alphabet[random() % alphabet.size()];
    return text;
}

TEST(KNMimeParameterListTest, PrintedListsReadBackExactly)
{
    std::mt19937 random(4242);
    const KNCString nameBytes = "abcXYZ019-_.!#$%&'*+^`{|}~\x80\xC3\xFF";
    KNCString valueBytes = "aZ9 \t\"\\;=()/<>@,:[]?\x01\x7f\x80\xE9\xFF";
    valueBytes += '\0';
    for (int round = 0; round < 2000; ++round) {
        KNMimeParameterList list;
        const std::size_t size = random() % 8;
        for (std::size_t i = 0; i < size; ++i)
            list.insertParameter(KNMimeParameter("n" + randomText(random, nameBytes, 6),
                                                 randomText(random, valueBytes, 12)));
        // A printed list begins with "; " so that it can follow a type; what follows it reads back.
        const KNCString printed = list.asString();
        KNMimeParameterList read;
        read.fromString(printed.substr(std::min<std::size_t>(2, printed.size())));
        ASSERT_EQ(read.getParameterCount(), size) << list.asString();
        for (std::size_t i = 0; i < size; ++i) {
            ASSERT_EQ(read.getParameter(i).getName(), list.getParameter(i).getName());
            ASSERT_EQ(read.getParameter(i).getValue(), list.getParameter(i).getValue()) << list.asString();
        }
        EXPECT_EQ(read, list);
        if (size > 0) {
            EXPECT_EQ(parsed(list.getParameter(0).asString()), list.getParameter(0));
        }
    }
}

// Every name and value, byte for byte, in order.
KNCString exactly(const KNMimeParameterList& list)
{
    KNCString text;
    for (std::size_t i = 0; i < list.getParameterCount(); ++i)
        text += "[" + list.getParameter(i).getName() + "|" + list.getParameter(i).getValue() + "]";
    return text;
}

// The list reading done the plain way: cut off each piece with its ';' and search again
// from the start of what is left.
KNCString readByCutting(KNCString text)
{
    KNMimeParameterList list;
    try {
        for (std::size_t p; (p = KNMimeUtils::findDelimiter(text, ';')) != KNCString::npos; text.erase(0, p + 1))
            list.insertParameter(parsed(text.substr(0, p)));
        text = KNMimeUtils::unfoldAndTrim(text);
        if (!text.empty())
            list.insertParameter(parsed(text));
    } catch (const KNMimeParseError& e) {
        return e.why();
    }
    return exactly(list);
}

TEST(KNMimeParameterListTest, ReadsWhatCuttingOffPiecesReads)
{
    std::mt19937 random(777);
    const KNCString alphabet = "ab=;;\"\\() \t\r\n\xE9";
    for (int round = 0; round < 20000; ++round) {
        const KNCString text = randomText(random, alphabet, 24);
        KNMimeParameterList list;
        KNCString exact;
        try {
            list.fromString(text);
            exact = exactly(list);
        } catch (const KNMimeParseError& e) {
            exact = e.why();
        }
        ASSERT_EQ(exact, readByCutting(text)) << text;
    }
}

} // namespace
