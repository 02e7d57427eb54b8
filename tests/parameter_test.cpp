// Parameters and parameter lists: reading, printing, lookup, replacement and equality.
#include <mime/KNMimeError.h>
#include <mime/KNMimeParameter.h>
#include <mime/KNMimeParameterList.h>
#include <mime/KNMimeUtils.h>

#include <foundation/KNBoundsErr.h>

#include <gtest/gtest.h>
#include <tests/TestSupport.h>

#include <algorithm>
#include <random>
#include <utility>

namespace {

const KNCString missingSeparator =
    "[MISSING_PARAMETER_SEPARATOR] Unable to separate parameter name from value";

// What a value holds, byte for byte: "[name|value]" per parameter.
KNCString exactly(const KNMimeParameter& p)
{
    return "[" + p.getName() + "|" + p.getValue() + "]";
}

KNCString exactly(const KNMimeParameterList& list)
{
    KNCString text;
    for (std::size_t i = 0; i < list.getParameterCount(); ++i)
        text += exactly(list.getParameter(i));
    return text;
}

// The error that reading `text` into `value` throws, if any, then what `value` holds.
template <class T>
KNCString afterReading(T value, const KNCString& text)
{
    const KNCString error = errorText<KNMimeParseError>([&] { value.fromString(text); });
    return (error == "no error" ? "" : error) + exactly(value);
}

TEST(KNMimeParameterTest, ReadingSplitsAtTheFirstUnquotedEqualsOrLeavesTheValue)
{
    const KNCString refused = missingSeparator + "[keep|me]";
    const std::pair<KNCString, KNCString> cases[] = {
        {" Charset = \"us-ascii\" (comment)", "[Charset|us-ascii]"},
        {"name=\"a\\\"b\"", "[name|a\"b]"},
        {"a=b=c", "[a|b=c]"},
        {"\"x=y\"(=)z=1", "[x=yz|1]"},
        {"a=  \t ", "[a|]"},
        {"=x", "[|x]"}, // an empty name is read; printing refuses it
        {"   ", refused}, {"a\"=\"", refused}, {"a(=)", refused}, {"a\"\\\"=", refused},
        {KNCString(100000, '(') + "=x", refused},
    };
    for (const auto& c : cases)
        EXPECT_EQ(afterReading(KNMimeParameter("keep", "me"), c.first), c.second) << c.first;
}

TEST(KNMimeParameterListTest, ReadingSplitsAtUnquotedSemicolonsOrLeavesTheList)
{
    const KNCString refused = missingSeparator + "[keep|1][keep|2]";
    const std::pair<KNCString, KNCString> cases[] = {
        {"a=\"x;y\"; b=2", "[a|x;y][b|2]"},
        {"a=1 (x;y); b=2\r\n\t;\r\n c=3;  \r\n ", "[a|1][b|2][c|3]"},
        {"a=\"x; b=2", "[a|x; b=2]"}, // an unclosed quote hides every later ';'
        {"\r\n \t", ""},
        {"a=1; ;b=2", refused}, {";a=1", refused}, {"a=1; b=2; c", refused}, {KNCString(200000, ';'), refused},
    };
    for (const auto& c : cases)
        EXPECT_EQ(afterReading(parsedAs<KNMimeParameterList>("keep=1; keep=2"), c.first), c.second) << c.first;
}

TEST(KNMimeParameterTest, PrintsTheValueAlwaysQuotedAndRefusesNonTokenNames)
{
    EXPECT_EQ(KNMimeParameter("a", "").asString(), "a=\"\"");
    EXPECT_EQ(KNMimeParameter("n", "a\"b\\c;d").asString(), "n=\"a\\\"b\\\\c;d\"");
    for (const KNCString name : {"", "a b", "a;b", "a=b", "a/b", "a\"b", "a\x7f", "a\x01", "(a)"})
        EXPECT_EQ(errorText<KNMimeError>([&] { KNMimeParameter(name, "v").asString(); }), invalidToken(name));
}

TEST(KNMimeParameterListTest, LookupReplacementAndBounds)
{
    KNMimeParameterList list = parsedAs<KNMimeParameterList>("charset=a; x=; CHARSET=b");
    EXPECT_EQ(list.findParameter("CHARSET", 0), 0u);
    EXPECT_EQ(list.findParameter("charset", 1), 2u);
    EXPECT_EQ(list.findParameter("charset", 3), KNCString::npos);
    EXPECT_EQ(list.getParameterValue("charset", 1), "b");
    // Absent and present-but-empty read the same; only findParameter tells them apart.
    EXPECT_EQ(list.getParameterValue("none"), "");
    EXPECT_EQ(list.getParameterValue("x"), "");
    EXPECT_EQ(list.findParameter("x"), 1u);

    // Setting removes the first match at or after start and appends the new spelling.
    list.fromString("a=1; b=2; A=3");
    list.setParameterValue("A", "9");
    EXPECT_EQ(list.asString(), "; b=\"2\"; A=\"3\"; A=\"9\"");
    list.setParameterValue("a", "7", 1);
    list.setParameterValue("b", "");
    list.setParameterValue("none", "");
    list.setParameterValue("a", "x", 100);
    EXPECT_EQ(list.asString(), "; A=\"9\"; a=\"7\"; a=\"x\"");

    EXPECT_EQ(errorText<KNBoundsErr>([&] { list.getParameter(3); }), "index 3 out of range [0, 3)");
    EXPECT_EQ(errorText<KNBoundsErr>([&] { list.removeParameter(7); }), "index 7 out of range [0, 3)");
    list.removeAllParameters();
    EXPECT_EQ(list.getParameterCount(), 0u);
    EXPECT_EQ(list.asString(), "");

    // A parameter's setters read back and print.
    KNMimeParameter p("a", "1");
    p.setName("Name");
    p.setValue("x y");
    EXPECT_EQ(p.getName() + "|" + p.getValue() + "|" + p.asString(), "Name|x y|Name=\"x y\"");
}

// The equality rule written pairwise: the reference for lists of any length.
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

TEST(KNMimeParameterListTest, EqualityIgnoresOrderAndMultiplicityButNotLength)
{
    using L = KNMimeParameterList;
    EXPECT_EQ(parsedAs<L>("a=1; a=1; b=2"), parsedAs<L>("A=1; b=2; b=2"));
    EXPECT_NE(parsedAs<L>("a=1; b=2"), parsedAs<L>("a=1; b=2; b=2"));
    // Short and long lists (long ones are compared by other means) against the rule.
    std::mt19937 random(20261121);
    const KNCString names[] = {"a", "A", "b", "B"};
    int equalPairs = 0;
    for (int round = 0; round < 3000; ++round) {
        const std::size_t size = random() % 40;
        KNMimeParameterList left, right;
        for (KNMimeParameterList* list : {&left, &right})
            for (std::size_t i = 0; i < size; ++i)
                list->insertParameter(KNMimeParameter(names[random() % 4], random() % 2 ? "1" : "2"));
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
        for (std::size_t i = random() % 8; i > 0; --i)
            list.insertParameter(KNMimeParameter("n" + randomText(random, nameBytes, 6),
                                                 randomText(random, valueBytes, 12)));
        // The printed list starts with "; " so that it can follow a type.
        const KNCString printed = list.asString();
        ASSERT_EQ(afterReading(list, printed.substr(std::min<std::size_t>(2, printed.size()))), exactly(list));
    }
}

// The list reading done the plain way: cut off each piece with its ';' and search again
// from the start of what is left.
KNCString readByCutting(KNCString text)
{
    KNMimeParameterList list;
    const KNCString error = errorText<KNMimeParseError>([&] {
        for (std::size_t p; (p = KNMimeUtils::findDelimiter(text, ';')) != KNCString::npos; text.erase(0, p + 1))
            list.insertParameter(parsedAs<KNMimeParameter>(text.substr(0, p)));
        text = KNMimeUtils::unfoldAndTrim(text);
        if (!text.empty())
            list.insertParameter(parsedAs<KNMimeParameter>(text));
    });
    return error == "no error" ? exactly(list) : error;
}

TEST(KNMimeParameterListTest, ReadsWhatCuttingOffPiecesReads)
{
    std::mt19937 random(777);
    const KNCString alphabet = "ab=;;\"\\() \t\r\n\xE9";
    for (int round = 0; round < 20000; ++round) {
        const KNCString text = randomText(random, alphabet, 24);
        ASSERT_EQ(afterReading(KNMimeParameterList(), text), readByCutting(text)) << text;
    }
}

} // namespace
