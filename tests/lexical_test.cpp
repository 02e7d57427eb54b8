#include <mime/KNMimeUtils.h>

#include <gtest/gtest.h>
#include <tests/TestSupport.h>

#include <random>
#include <set>
#include <sstream>
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
KNCString naiveReplace(const KNCString& text, const KNCString& delim)
{
    KNCString out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        out += text[i] == '\r' || text[i] == '\n' ? delim : KNCString(1, text[i]);
        i += text.compare(i, 2, "\r\n") == 0;
    }
    return out;
}

} // namespace

TEST(Lexical, ScannersHonourQuotesAndComments)
{
    EXPECT_EQ(U::findDelimiter("text/plain; a=\"x;y\" (c;d) ;z", ';'), 10u);
    EXPECT_EQ(U::findDelimiter("a=\"x;y\" (c;(d;)e;) ;z", ';'), 19u);
    EXPECT_EQ(U::findDelimiter("a\\;b", ';'), 2u); // no escapes outside quotes
    EXPECT_EQ(U::findDelimiter("a\"b\"c", '"'), 1u);
    for (const char* unclosed : {"a(b;c", "\"a;b", "\"a\\", ""})
        EXPECT_EQ(U::findDelimiter(unclosed, ';'), npos) << unclosed;
    EXPECT_EQ(U::cleanToken(" a   (comment (nested)) b ", false), "a b");
    EXPECT_EQ(U::cleanToken("\"a\r\n b\" \t c", true), "a b c");
    EXPECT_EQ(U::cleanToken("a (x\\) y) b", false), "a b");
    EXPECT_EQ(U::cleanToken("a (unclosed", false), "a");
    EXPECT_EQ(U::cleanToken("\"unclosed \\", true), "unclosed ");
    EXPECT_EQ(U::cleanToken("\"a\\b", true), "ab");          // a quoted pair ending the text
    EXPECT_EQ(U::cleanToken("\"a\\\"", true), "a\"");       // an escaped quote ending the text
    EXPECT_EQ(U::cleanToken("\"a\\ \"", true), "a ");        // an escaped blank is data too
    EXPECT_EQ(U::cleanToken("\"a \"x ", true), "a x");          // a later plain blank is not
    EXPECT_EQ(U::findDelimiter("abc", '\0'), npos);
    EXPECT_EQ(U::quoteAndEscape("a\"b\\"), "\"a\\\"b\\\\\"");
    EXPECT_EQ(U::quoteAndEscape(""), "\"\"");
    EXPECT_FALSE(U::isToken(""));
    EXPECT_TRUE(U::isToken("a\xC8z"));
    EXPECT_TRUE(U::isToken(KNCString("ab\0 c", 5))); // only the bytes before a NUL count
    for (const char c : KNCString(" ()<>@,;:\\\"/[]?=\t\r\n\x01\x1f\x7f"))
        EXPECT_FALSE(U::isToken(KNCString("a") + c)) << int(c);
    EXPECT_TRUE(U::isToken("!#$%&'*+-.^_`{|}~09AZaz"));
    std::mt19937 rng(7);
    for (int round = 0; round < 500; ++round) { // blanks, quotes, escapes and delimiters inside quotes survive
        const KNCString text = randomText(rng, "ab\"\\(); x", 20);
        const KNCString quoted = U::quoteAndEscape(text);
        EXPECT_EQ(U::cleanToken(quoted, true), text);
        EXPECT_EQ(U::cleanToken(quoted, false), quoted);
        EXPECT_EQ(U::findDelimiter(quoted + ";", ';'), quoted.size());
    }
}

TEST(Lexical, UnfoldAndReplaceLineDelimiterMatchNaiveRules)
{
    std::mt19937 rng(11);
    for (int round = 0; round < 2000; ++round) {
        const KNCString text = randomText(rng, "ab \t\r\n\r\n", 30);
        EXPECT_EQ(U::unfoldAndTrim(text), naiveUnfoldAndTrim(text)) << testing::PrintToString(text);
        for (const KNCString delim : {"\r\n", "\n", "\r", "<br>", ""})
            EXPECT_EQ(U::replaceLineDelimiter(text, delim), naiveReplace(text, delim));
    }
}

TEST(Lexical, FoldBreaksOnlyAtBlanks)
{
    KNCString line(100, 'x');
    EXPECT_EQ(U::fold(line), line);
    line[50] = ' ';
    EXPECT_EQ(U::fold(line), line.substr(0, 50) + "\r\n" + line.substr(50));
    EXPECT_EQ(U::fold("short\r\nlines\r\n"), "short\r\nlines\r\n");
    // Without a usable blank inside the limit the line breaks at the first blank after it.
    EXPECT_EQ(U::fold(KNCString(100, 'x') + " tail"), KNCString(100, 'x') + "\r\n tail");
    EXPECT_EQ(U::fold(KNCString(80, ' ') + "yyy zz"), KNCString(79, ' ') + "\r\n yyy zz");
    // Each existing line on its own: the blank of a short first line is no break point for
    // the long line after it. A lone CR is no line end, and the scan goes on past it.
    EXPECT_EQ(U::fold("x y\r\n" + KNCString(100, 'z')), "x y\r\n" + KNCString(100, 'z'));
    EXPECT_EQ(U::fold("a\rb " + KNCString(90, 'c') + "\r\n\r"), "a\rb\r\n " + KNCString(90, 'c') + "\r\n\r");
    EXPECT_EQ(U::fold(KNCString(79, '\r') + " x"), KNCString(79, '\r') + "\r\n x");
    // Line ends next to lone CRs and LFs, and a final CR LF, are found exactly: none of
    // these lines is longer than 78 characters.
    for (const KNCString& text : {"a \r\r\n" + KNCString(100, 'b'), "a " + KNCString(74, 'b') + "\r\r\n",
                                  "a " + KNCString(75, 'b') + "\r\n", KNCString("ab\n")})
        EXPECT_EQ(U::fold(text), text);

    std::mt19937 rng(13);
    const KNCString alphabets[] = {KNCString(150, 'a') + " \t", "aaaaaaaaaaaaaaaaaaaaaaaaa \t"};
    int longLines = 0;
    for (int round = 0; round < 1000; ++round) {
        const KNCString text = randomText(rng, alphabets[round % 2], 400);
        const KNCString folded = U::fold(text);
        EXPECT_EQ(U::replaceLineDelimiter(folded, ""), text);          // only line breaks were added,
        EXPECT_EQ(U::unfoldAndTrim(folded), U::unfoldAndTrim(text)); // each before a blank
        std::istringstream lines(U::replaceLineDelimiter(folded, "\n"));
        for (KNCString l; std::getline(lines, l);) {
            if (l.size() > 78) { // then it is blanks followed by a word: no blank was usable
                ++longLines;
                EXPECT_EQ(l.find_first_of(" \t", l.find_first_not_of(" \t")), npos) << l;
            }
        }
    }
    EXPECT_GT(longLines, 10); // the property was exercised
}

TEST(Lexical, TokenizeHeader)
{
    using L = KNCStringList;
    EXPECT_EQ(U::tokenizeHeader("x", false), L{}); // a one-byte rest is dropped, deliberately
    // Leading white space is kept, white space between words dropped, text after them kept.
    EXPECT_EQ(U::tokenizeHeader(" =?a?Q?b?= =?c?Q?d?= xy", false), (L{" ", "=?a?Q?b?=", "=?c?Q?d?=", " xy"}));
    EXPECT_EQ(U::tokenizeHeader("(=?a?Q?x?=)", true), (L{"(", "=?a?Q?x?="}));
    EXPECT_EQ(U::tokenizeHeader("(=?a?Q?x?=)", false), L{"(=?a?Q?x?=)"});
    EXPECT_EQ(U::tokenizeHeader("  hi =?a?Q?x?=  =?a?Q?y?= there", false),
        (L{"  hi ", "=?a?Q?x?=", "=?a?Q?y?=", " there"}));
    EXPECT_EQ(U::tokenizeHeader("a=?b?Q?c?= d", false), L{"a=?b?Q?c?= d"}); // start not after blank
    EXPECT_EQ(U::tokenizeHeader("=?b?Q?c?=d e", false), L{"=?b?Q?c?=d e"}); // end not before blank
}

TEST(Lexical, UniqueBoundaryAcrossThreads)
{
    std::vector<std::vector<KNCString>> seen(8);
    std::vector<std::thread> threads;
    for (auto& list : seen)
        threads.emplace_back([&list] {
            for (int i = 0; i < 2000; ++i)
                list.push_back(U::getUniqueBoundary());
        });
    std::set<KNCString> all;
    for (std::size_t t = 0; t < threads.size(); ++t) {
        threads[t].join();
        // Increasing within each thread; the stamps have one width, so text order is number order.
        for (std::size_t i = 1; i < seen[t].size(); ++i)
            EXPECT_LT(seen[t][i - 1], seen[t][i]);
        all.insert(seen[t].begin(), seen[t].end());
    }
    EXPECT_EQ(all.size(), 16000u);
    const KNCString& some = *all.begin();
    EXPECT_EQ(some.substr(0, 13) + some.substr(some.size() - 3), "_=_next_part__=_");
    EXPECT_GT(std::stoll(some.substr(13)), 1600000000000LL); // milliseconds since 1970, not seconds
}
