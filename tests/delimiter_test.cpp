// Finding multipart delimiters through the index of dash runs gives what the direct search
// gives: the index against KNSubstringFinder on dash-heavy texts, and whole parses of random
// nested multiparts (every way of searching, same tree or same error).

#include "TestSupport.h"

#include <foundation/KNSubstringFinder.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeHeader.h>
#include <mime/KNMimeMultipart.h>
#include <mime/KNMimeMultipartImp.h>
#include <mime/KNMimePart.h>
#include <mime/internal/KNMimeDelimiterIndex.h>
#include <mime/internal/KNMimeEntityParse.h>

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using Search = KNMimeEntityParse::Search;

constexpr std::size_t noRunLimit = std::numeric_limits<std::size_t>::max();

TEST(KNMimeDelimiterIndexTest, AgreesWithTheDirectSearchInEverySlice)
{
    // Mostly dashes, so that runs of every length meet delimiters that start with dashes,
    // are all dashes, or are prefixes of one another; long ones differ from each other only
    // at their end or inside.
    const std::vector<std::string> pieces = {"-", "-", "--", "---", "a", "b", "\r", "abcdefgh", "abcdefgx",
                                             "abcdefghijklmnopqr", "abcdefghijklmnopqx", "abcdefghiXklmnopqr"};
    const std::vector<std::string> boundaries = {"-",   "--",  "---", "a",        "ab",        "-a",
                                                 "--a", "a-",  "a--b", "-a-",     "b-",        "abcdefgh",
                                                 "-abcdefgh", "abcdefghijklmnop", "abcdefghijklmnopqr"};
    std::mt19937 random(20261123);
    for (int round = 0; round < 1500; ++round) {
        std::string text;
        for (std::size_t count = random() % 24; count > 0; --count)
            text += pieces[random() % pieces.size()];
        const std::size_t length = text.size();
        KNMimeDelimiterIndex index(text, noRunLimit);
        const std::string_view whole(text);
        for (const std::string& boundary : boundaries) {
            const KNSubstringFinder delimiter("--" + boundary);
            for (int slices = 0; slices < 4; ++slices) {
                const std::size_t begin = random() % (length + 1);
                const std::size_t end = begin + random() % (length - begin + 1);
                const std::string_view slice = whole.substr(begin, end - begin);
                for (std::size_t from = 0; from <= slice.size() + 1; ++from)
                    ASSERT_EQ(index.find(slice, delimiter, from), delimiter.find(slice, from))
                        << '"' << text << "\" [" << begin << ',' << end << ") " << delimiter.needle() << " @" << from;
            }
        }
    }
}

TEST(KNMimeDelimiterIndexTest, SearchesDirectlyOnceTheTextShowsTooManyRuns)
{
    // 64 bytes keep at most two runs; single dashes are not runs.
    std::string text(64, 'x');
    text.replace(0, 2, "--");
    text.replace(10, 5, "-----");
    text.replace(20, 1, "-");
    text.replace(30, 1, "-");
    ASSERT_EQ(KNMimeDelimiterIndex::runLimit(text.size()), 2u);
    const KNSubstringFinder x("--x");
    const KNSubstringFinder y("--y");
    const KNSubstringFinder dashes("---");
    KNMimeDelimiterIndex two(text, KNMimeDelimiterIndex::runLimit(text.size()));
    EXPECT_EQ(two.find(text, x, 0), 0u);
    EXPECT_EQ(two.find(text, x, 1), 13u);
    EXPECT_EQ(two.find(text, dashes, 1), 10u);
    EXPECT_EQ(two.find(text, dashes, 13), std::string_view::npos);
    EXPECT_EQ(two.find(text, y, 0), std::string_view::npos);
    EXPECT_TRUE(two.usable());

    text.replace(40, 2, "--"); // a third run
    KNMimeDelimiterIndex three(text, KNMimeDelimiterIndex::runLimit(text.size()));
    EXPECT_EQ(three.find(text, x, 1), 13u); // only the first two runs read so far
    EXPECT_TRUE(three.usable());
    EXPECT_EQ(three.find(text, y, 0), std::string_view::npos);
    EXPECT_FALSE(three.usable());
    EXPECT_EQ(three.find(text, x, 14), 40u);
    EXPECT_EQ(three.find(std::string_view(text).substr(12, 30), x, 0), 1u);
    KNMimeDelimiterIndex unlimited(text, noRunLimit);
    EXPECT_EQ(unlimited.find(text, y, 0), std::string_view::npos);
    EXPECT_TRUE(unlimited.usable());
}

// Every byte of a parsed tree: headers, preambles and leaf bodies, each with its length.
KNCString describe(const KNMimePart& part)
{
    KNCString out = "{";
    for (std::size_t i = 0; i < part.getHeaderCount(); ++i)
        out += part.getHeader(i).asString() + "|";
    if (part.isMultipart()) {
        const KNMimeMultipart multipart(part);
        out += "preamble(" + std::to_string(multipart.getPreamble().size()) + "):" + multipart.getPreamble();
        for (std::size_t i = 0; i < multipart.getPartCount(); ++i)
            out += describe(multipart.getPart(i));
    } else {
        out += "body(" + std::to_string(part.getBody().size()) + "):" + part.getBody();
    }
    return out + "}";
}

KNCString parsedWith(std::string_view text, Search search)
{
    return outcome([&] { return describe(KNMimeEntityParse(text, search).entity(false)); });
}

// The body parsed into a multipart with the given boundary, as setBody does.
KNCString bodyParsedWith(std::string_view body, const std::string& boundary, Search search)
{
    return outcome([&] {
        KNMimePart part;
        part.fromString("Content-Type: multipart/mixed; boundary=\"" + boundary + "\"\r\n\r\n--" + boundary + "--\r\n");
        KNMimeEntityParse(body, search).multipartBody(*KNMimeMultipart(part).body());
        return describe(part);
    });
}

// Random nested multipart texts, mostly well formed, with the faults that make delimiter
// finding hard: boundaries starting with dashes or made of them, boundaries that are
// prefixes of others, delimiters (own or enclosing) inside lines, dash-heavy bodies,
// missing closing delimiters.
class NestedTextMaker {
public:
    explicit NestedTextMaker(unsigned seed) : random_(seed) {}

    // An entity; the boundary of a multipart at its top goes to `topBoundary` (else empty).
    std::string entity(std::string& topBoundary)
    {
        std::vector<std::string> enclosing;
        return entity(enclosing, topBoundary);
    }

private:
    bool chance(unsigned percent) { return random_() % 100 < percent; }
    const std::string& pick(const std::vector<std::string>& from) { return from[random_() % from.size()]; }

    std::string boundary()
    {
        static const std::vector<std::string> fixed = {"-",      "--",   "---",  "a",   "ab",  "abc", "-a",
                                                       "--a",    "a-",   "a-b",  "-=-", "=_x", "b",   "=_x1",
                                                       "=_x1_2", "-ab",  "=_level_1_=",   "=_level_12_=",
                                                       "=_part_0123456789_1", "=_part_0123456789_12"};
        if (chance(75))
            return pick(fixed);
        static const std::string alphabet = "-ab=_";
        std::string made;
        const std::size_t length = 1 + random_() % 6;
        for (std::size_t i = 0; i < length; ++i)
            made += alphabet[random_() % alphabet.size()];
        return made;
    }

    // Leaf text: words, line ends and dash runs, now and then a delimiter of an enclosing
    // multipart inside a line.
    std::string junk(const std::vector<std::string>& enclosing)
    {
        static const std::vector<std::string> pieces = {"word", " ", "-", "--", "---", "-----", "\r\n", "a", "=_x",
                                                        "=_level_1", "=_level_12_", "=_part_0123456789_"};
        std::string text;
        const std::size_t count = random_() % 12;
        for (std::size_t i = 0; i < count; ++i) {
            if (!enclosing.empty() && chance(4))
                text += "--" + pick(enclosing) + (chance(50) ? "--" : "");
            else
                text += pick(pieces);
        }
        return text;
    }

    std::string entity(std::vector<std::string>& enclosing, std::string& topBoundary)
    {
        topBoundary.clear();
        if (enclosing.size() >= 5 || chance(enclosing.empty() ? 15 : 45)) {
            const std::string head = chance(85) ? "Content-Type: text/plain\r\n\r\n" : "\r\n";
            return head + junk(enclosing);
        }
        const std::string own = boundary();
        topBoundary = own;
        std::string text = "Content-Type: multipart/mixed; boundary=\"" + own + "\"\r\n\r\n";
        enclosing.push_back(own);
        if (chance(40))
            text += junk(enclosing) + "\r\n";
        const std::size_t parts = random_() % 4;
        for (std::size_t i = 0; i < parts; ++i) {
            std::string nested;
            text += "--" + own + (chance(95) ? "\r\n" : "") + entity(enclosing, nested) + "\r\n";
        }
        if (chance(85))
            text += "--" + own + "--" + (chance(30) ? "\r\n" + junk(enclosing) : "");
        enclosing.pop_back();
        return text;
    }

    std::mt19937 random_;
};

TEST(KNMimeEntityParseTest, EveryWayOfSearchingParsesRandomNestedTextsAlike)
{
    NestedTextMaker maker(777);
    std::mt19937 random(778);
    int parsed = 0;
    int compared = 0;
    for (int round = 0; round < 2500; ++round) {
        std::string boundary;
        const std::string text = maker.entity(boundary);
        const KNCString direct = parsedWith(text, Search::Direct);
        ASSERT_EQ(parsedWith(text, Search::Nested), direct) << text;
        ASSERT_EQ(parsedWith(text, Search::Indexed), direct) << text;
        parsed += direct.substr(0, 1) == "{" ? 1 : 0;
        ++compared;

        // The body alone, as setBody parses it.
        const std::size_t separator = text.find("\r\n\r\n");
        if (!boundary.empty() && separator != std::string::npos) {
            const std::string_view body = std::string_view(text).substr(separator + 4);
            const KNCString bodyDirect = bodyParsedWith(body, boundary, Search::Direct);
            ASSERT_EQ(bodyParsedWith(body, boundary, Search::Nested), bodyDirect) << text;
            ASSERT_EQ(bodyParsedWith(body, boundary, Search::Indexed), bodyDirect) << text;
        }

        // Texts cut at every offset around a few of the dash runs, where delimiters are
        // partly there.
        if (round % 4 != 0)
            continue;
        std::vector<std::size_t> runs;
        for (std::size_t p = text.find("--"); p != std::string::npos; p = text.find("--", p + 2))
            runs.push_back(p);
        for (int cut = 0; cut < 3 && !runs.empty(); ++cut) {
            const std::size_t run = runs[random() % runs.size()];
            for (std::size_t end = run == 0 ? 0 : run - 1; end <= std::min(text.size(), run + 12); ++end) {
                const std::string_view truncated = std::string_view(text).substr(0, end);
                const KNCString truncatedDirect = parsedWith(truncated, Search::Direct);
                ASSERT_EQ(parsedWith(truncated, Search::Nested), truncatedDirect) << truncated;
                ASSERT_EQ(parsedWith(truncated, Search::Indexed), truncatedDirect) << truncated;
                ++compared;
            }
        }
    }
    // The texts must mostly parse for the comparison to reach nested levels.
    EXPECT_GT(parsed, 2500 / 3);
    EXPECT_GT(compared, 10000);
}

TEST(KNMimeEntityParseTest, DeepNestingParsesAsItPrints)
{
    // 128 levels, each with a leaf beside the next level, boundaries starting with dashes and
    // leaves full of dash runs (too many for the index: the direct search takes over).
    std::string head;
    std::string tail;
    for (int level = 1; level <= 128; ++level) {
        const std::string boundary = "-" + std::string(static_cast<std::size_t>(level % 7), '=') + std::to_string(level) + "-";
        head += "Content-Type: multipart/mixed; boundary=\"" + boundary + "\"\r\n\r\n--" + boundary +
                "\r\nContent-Type: text/plain\r\n\r\n" + (level % 2 == 0 ? "-- -- -- -- --" : "text") + "\r\n--" +
                boundary + "\r\n";
        tail.insert(0, "\r\n--" + boundary + "--\r\n");
    }
    const std::string text = head + "Content-Type: text/plain\r\n\r\ninnermost" + tail;
    const KNCString direct = parsedWith(text, Search::Direct);
    ASSERT_EQ(direct.substr(0, 1), "{");
    EXPECT_EQ(parsedWith(text, Search::Nested), direct);
    EXPECT_EQ(parsedWith(text, Search::Indexed), direct);

    KNMimePart part;
    part.fromString(text);
    EXPECT_EQ(describe(part), direct);
    EXPECT_EQ(part.asString(), text);
    KNMimeMultipart inner(part);
    for (int level = 2; level <= 128; ++level)
        inner = KNMimeMultipart(inner.getPart(1));
    EXPECT_EQ(inner.getPart(1).getBody(), "innermost");

    // The parts the parser appends still refuse to take a multipart holding them.
    expectError<KNMimeError>([&] { inner.insertPart(part); }, "[CYCLIC_PART] A multipart cannot contain itself");
}

} // namespace
