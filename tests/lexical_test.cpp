#include <mime/KNMimeUtils.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <thread>

using U = KNMimeUtils;

namespace {

const std::size_t npos = KNCString::npos;

KNCString randomText(std::mt19937& rng, const KNCString& alphabet, std::size_t maxLength)
{
    KNCString text(rng() % (maxLength + 1), ' ');
    for (char& c : text)
        c = alphabet[rng() % alphabet.size()];
    return text;
}

// Straightforward renderings of the rules, quadratic on purpose, to compare against.
KNCString naiveUnfold(KNCString text)
{
    for (std::size_t at = text.find("\r\n"); at != npos; at = text.find("\r\n", at + 1))
        if (at + 2 < text.size() && (text[at + 2] == ' ' || text[at + 2] == '\t'))
            text.erase(at, 2);
    return text;
}

KNCString naiveReplace(const KNCString& text, const KNCString& delim)
{
    KNCString out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r' && text[i] != '\n') {
            out += text[i];
            continue;
        }
        if (text.compare(i, 2, "\r\n") == 0)
            ++i;
        out += delim;
    }
    return out;
}

std::vector<KNCString> splitLines(const KNCString& text)
{
    std::vector<KNCString> lines;
    std::size_t from = 0;
    for (std::size_t at = text.find("\r\n"); at != npos; at = text.find("\r\n", from = at + 2))
        lines.push_back(text.substr(from, at - from));
    lines.push_back(text.substr(from));
    return lines;
}

} // namespace

TEST(Lexical, FindDelimiterSkipsQuotesAndComments)
{
    EXPECT_EQ(U::findDelimiter("text/plain; a=\"x;y\" (c;d) ;z", ';'), 10u);
    EXPECT_EQ(U::findDelimiter("a=\"x;y\" (c;(d;)e;) ;z", ';'), 19u);
    EXPECT_EQ(U::findDelimiter("\"a\\\";b\";c", ';'), 7u);
    EXPECT_EQ(U::findDelimiter("a(b;c", ';'), npos);
    EXPECT_EQ(U::findDelimiter("\"a;b", ';'), npos);
    EXPECT_EQ(U::findDelimiter("\"a\\", ';'), npos); // escape past the end
    EXPECT_EQ(U::findDelimiter("", ';'), npos);
    EXPECT_EQ(U::findDelimiter("a\\;b", ';'), 2u); // no escapes outside quotes
    EXPECT_EQ(U::findDelimiter("a\"b\"c", '"'), 1u);
    EXPECT_EQ(U::findDelimiter("x(y)", '('), 1u);
}

TEST(Lexical, IsToken)
{
    EXPECT_FALSE(U::isToken(""));
    EXPECT_FALSE(U::isToken("a b"));
    EXPECT_TRUE(U::isToken("x-custom"));
    EXPECT_TRUE(U::isToken("a\xC8z"));
    EXPECT_TRUE(U::isToken(KNCString("ab\0 c", 5))); // only the bytes before a NUL count
    for (const char c : KNCString(" ()<>@,;:\\\"/[]?=\t\r\n\x01\x1f\x7f"))
        EXPECT_FALSE(U::isToken(KNCString("a") + c)) << int(c);
    for (const char c : KNCString("!#$%&'*+-.^_`{|}~09AZaz"))
        EXPECT_TRUE(U::isToken(KNCString(1, c))) << c;
}

TEST(Lexical, CleanTokenAndQuote)
{
    EXPECT_EQ(U::cleanToken(" a   (comment (nested)) b ", false), "a b");
    EXPECT_EQ(U::cleanToken("\"x y \"", true), "x y ");
    EXPECT_EQ(U::cleanToken("\"x y \"", false), "\"x y \"");
    EXPECT_EQ(U::cleanToken("\"a\\\"b\"", true), "a\"b");
    EXPECT_EQ(U::cleanToken("\"a\\\"b\"", false), "\"a\\\"b\"");
    EXPECT_EQ(U::cleanToken("\"a\r\n b\" \t c", true), "a b c");
    EXPECT_EQ(U::cleanToken("a (x\\) y) b", false), "a b");
    EXPECT_EQ(U::cleanToken("\t\r\n", false), "");
    EXPECT_EQ(U::cleanToken("a (unclosed", false), "a");
    EXPECT_EQ(U::cleanToken("\"unclosed \\", true), "unclosed ");
    EXPECT_EQ(U::quoteAndEscape("a\"b\\"), "\"a\\\"b\\\\\"");
    EXPECT_EQ(U::quoteAndEscape(""), "\"\"");
    std::mt19937 rng(7);
    for (int round = 0; round < 500; ++round) { // quoting then unquoting gives the text back
        const KNCString text = randomText(rng, "ab\"\\(); x", 20);
        const KNCString quoted = U::quoteAndEscape(text);
        EXPECT_EQ(U::cleanToken(quoted, true), text);
        EXPECT_EQ(U::findDelimiter(quoted + ";", ';'), quoted.size());
    }
}

TEST(Lexical, UnfoldAndTrim)
{
    EXPECT_EQ(U::unfoldAndTrim(" a\r\n b\r\nc "), "a b\r\nc");
    EXPECT_EQ(U::unfoldAndTrim("a\r\n\r\n b"), "a\r\n b");
    EXPECT_EQ(U::unfoldAndTrim("a  \r\n\t\tb"), "a  \t\tb");
    EXPECT_EQ(U::unfoldAndTrim("\r\n \r\n"), "");
    std::mt19937 rng(11);
    for (int round = 0; round < 2000; ++round) {
        const KNCString text = randomText(rng, "ab \t\r\n\r\n", 30);
        const KNCString unfolded = naiveUnfold(text);
        const std::size_t first = unfolded.find_first_not_of(" \t\r\n");
        const KNCString expected = first == npos ? KNCString()
            : unfolded.substr(first, unfolded.find_last_not_of(" \t\r\n") + 1 - first);
        EXPECT_EQ(U::unfoldAndTrim(text), expected) << testing::PrintToString(text);
    }
}

TEST(Lexical, Fold)
{
    KNCString line(100, 'x');
    EXPECT_EQ(U::fold(line), line);
    line[50] = ' ';
    EXPECT_EQ(U::fold(line), line.substr(0, 50) + "\r\n" + line.substr(50));
    EXPECT_EQ(U::fold("short\r\nlines\r\n"), "short\r\nlines\r\n");
    // Without a blank inside the limit the line breaks at the first blank after it.
    EXPECT_EQ(U::fold(KNCString(100, 'x') + " tail"), KNCString(100, 'x') + "\r\n tail");
    EXPECT_EQ(U::fold(KNCString(80, ' ') + "yyy zz"), KNCString(79, ' ') + "\r\n yyy zz");

    std::mt19937 rng(13);
    const KNCString dense = "aaaaaaaaaaaaaaaaaaaaaaaaa \t";
    const KNCString sparse = KNCString(150, 'a') + " \t";
    int longLines = 0;
    for (int round = 0; round < 1000; ++round) {
        const KNCString text = randomText(rng, round % 2 ? dense : sparse, 400);
        const KNCString folded = U::fold(text);
        KNCString unfolded = folded;
        unfolded.erase(std::remove(unfolded.begin(), unfolded.end(), '\r'), unfolded.end());
        unfolded.erase(std::remove(unfolded.begin(), unfolded.end(), '\n'), unfolded.end());
        EXPECT_EQ(unfolded, text);
        EXPECT_EQ(U::unfoldAndTrim(folded), U::unfoldAndTrim(text));
        // A line left over 78 is blanks followed by a word: no blank was usable.
        for (const KNCString& l : splitLines(folded)) {
            if (l.size() > 78) {
                ++longLines;
                EXPECT_EQ(l.find_first_of(" \t", l.find_first_not_of(" \t")), npos) << l;
            }
        }
    }
    EXPECT_GT(longLines, 10); // the property was exercised
}

TEST(Lexical, ReplaceLineDelimiter)
{
    EXPECT_EQ(U::replaceLineDelimiter("a\rb\nc\r\nd", "\r\n"), "a\r\nb\r\nc\r\nd");
    EXPECT_EQ(U::replaceLineDelimiter("a\rb\nc\r\nd", "\n"), "a\nb\nc\nd");
    EXPECT_EQ(U::replaceLineDelimiter("\n\n", "\r"), "\r\r");
    EXPECT_EQ(U::replaceLineDelimiter("\n\r", "\r\n"), "\r\n\r\n");
    EXPECT_EQ(U::replaceLineDelimiter("a\r\n\r\rb", ""), "ab");
    std::mt19937 rng(17);
    for (int round = 0; round < 2000; ++round) {
        const KNCString text = randomText(rng, "ab\r\n", 25);
        for (const KNCString delim : {"\r\n", "\n", "\r", "<br>", ""}) {
            EXPECT_EQ(U::replaceLineDelimiter(text, delim), naiveReplace(text, delim));
        }
    }
}

TEST(Lexical, TokenizeHeader)
{
    using L = KNCStringList;
    EXPECT_EQ(U::tokenizeHeader("=?a?Q?x?= =?a?Q?y?=", false), (L{"=?a?Q?x?=", "=?a?Q?y?="}));
    EXPECT_EQ(U::tokenizeHeader("x", false), L{});
    EXPECT_EQ(U::tokenizeHeader("ab", false), L{"ab"});
    EXPECT_EQ(U::tokenizeHeader("(=?a?Q?x?=)", true), (L{"(", "=?a?Q?x?="})); // ")" is a dropped rest
    EXPECT_EQ(U::tokenizeHeader("(=?a?Q?x?=)", false), L{"(=?a?Q?x?=)"});
    EXPECT_EQ(U::tokenizeHeader("  hi =?a?Q?x?=  =?a?Q?y?= there", false),
        (L{"  hi ", "=?a?Q?x?=", "=?a?Q?y?=", " there"}));
    EXPECT_EQ(U::tokenizeHeader("a=?b?Q?c?= d", false), L{"a=?b?Q?c?= d"}); // start not after blank
    EXPECT_EQ(U::tokenizeHeader("=?b?Q?c?=d e", false), L{"=?b?Q?c?=d e"});   // end not before blank
    EXPECT_EQ(U::tokenizeHeader("=?a?Q?unclosed", false), L{"=?a?Q?unclosed"});
}

TEST(Lexical, UniqueBoundary)
{
    const KNCString first = U::getUniqueBoundary();
    ASSERT_EQ(first.compare(0, 13, "_=_next_part_"), 0);
    ASSERT_EQ(first.substr(first.size() - 3), "_=_");
    const long long stamp = std::stoll(first.substr(13, first.size() - 16));
    EXPECT_GT(stamp, 1600000000000LL); // milliseconds since 1970, not seconds

    std::vector<std::vector<KNCString>> seen(4);
    std::vector<std::thread> threads;
    for (auto& list : seen)
        threads.emplace_back([&list] {
            for (int i = 0; i < 2000; ++i)
                list.push_back(U::getUniqueBoundary());
        });
    for (auto& t : threads)
        t.join();
    std::set<KNCString> all;
    for (const auto& list : seen) {
        for (std::size_t i = 1; i < list.size(); ++i) // increasing within each thread
            EXPECT_LT(std::stoll(list[i - 1].substr(13)), std::stoll(list[i].substr(13)));
        all.insert(list.begin(), list.end());
    }
    EXPECT_EQ(all.size(), 8000u);
}
