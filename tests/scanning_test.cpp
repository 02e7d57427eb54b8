// The scanners behind header parsing and printing look at eight bytes at a time and hand
// long stretches to memchr. These tests put the byte that matters at every offset of those
// steps, near their ends and past the inline stretch, and compare with plain byte-by-byte
// renderings of the same rules.

#include "TestSupport.h"

#include <mime/KNMimeError.h>
#include <mime/KNMimeHeader.h>
#include <mime/KNMimeHeaderImp.h>
#include <mime/KNMimePart.h>
#include <mime/KNMimeUtils.h>

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

const std::size_t npos = KNCString::npos;

// Lengths around the eight-byte step, and around the end of the inline stretch (128).
std::vector<std::size_t> interestingLengths()
{
    std::vector<std::size_t> lengths;
    for (std::size_t n = 0; n <= 40; ++n)
        lengths.push_back(n);
    for (std::size_t n = 118; n <= 140; ++n)
        lengths.push_back(n);
    lengths.push_back(300);
    return lengths;
}

// The delimiter rule one byte at a time: quoted strings (with quoted pairs) and nested
// comments (with quoted pairs) hide it.
std::size_t naiveFindDelimiter(const KNCString& text, char delim)
{
    bool quoted = false;
    int depth = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quoted) {
            if (c == '\\')
                ++i;
            else if (c == '"')
                quoted = false;
        } else if (depth > 0) {
            if (c == '\\')
                ++i;
            else if (c == '(')
                ++depth;
            else if (c == ')')
                --depth;
        } else if (c == delim) {
            return i;
        } else if (c == '"') {
            quoted = true;
        } else if (c == '(') {
            depth = 1;
        }
    }
    return npos;
}

// True when a CR or LF of `value` is not the start of CR LF followed by a blank or tab.
bool naiveHasBareLineBreak(const KNCString& value)
{
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '\r' && value[i] != '\n')
            continue;
        if (value.compare(i, 2, "\r\n") != 0 || i + 2 >= value.size() || (value[i + 2] != ' ' && value[i + 2] != '\t'))
            return true;
        i += 2;
    }
    return false;
}

KNCString invalidValue(const KNCString& value)
{
    return "[INVALID_VALUE] The following is not a valid header value:  \"" + value + "\"";
}

const KNCString separatorError = "[MISSING_HEADER_BODY_SEPARATOR] Unable to separate message headers from body";

// "label: value" for each header, then "body: " and the body, as the naive split reads
// the text; or the separator error.
KNCString naiveEntity(const KNCString& text)
{
    const std::size_t separator = text.find("\r\n\r\n");
    if (separator == npos)
        return separatorError;
    KNCString out;
    std::size_t start = 0;
    while (start <= separator) {
        std::size_t end = text.find("\r\n", start);
        while (end < separator && (text[end + 2] == ' ' || text[end + 2] == '\t'))
            end = text.find("\r\n", end + 2);
        const KNCString line = text.substr(start, end - start);
        const std::size_t colon = line.find(':');
        if (colon == npos)
            return "[MISSING_HEADER_SEPARATOR] Unable to separate label from value";
        out += naiveUnfoldAndTrim(line.substr(0, colon)) + ": " + naiveUnfoldAndTrim(line.substr(colon + 1)) + "\n";
        start = end + 2;
    }
    return out + "body: " + text.substr(separator + 4);
}

KNCString parsedEntity(const KNCString& text)
{
    return outcome([&] {
        KNMimePart part;
        part.fromString(text);
        KNCString out;
        for (std::size_t i = 0; i < part.getHeaderCount(); ++i) {
            const KNMimeHeader header = part.getHeader(i);
            out += header.getLabel() + ": " + header.body()->getValueAsString() + "\n";
        }
        return out + "body: " + part.getBody();
    });
}

} // namespace

TEST(Scanning, DelimitersAndFoldsAreFoundAtEveryOffset)
{
    const KNCString specials = ":\"()\\\r\n \t";
    for (const std::size_t n : interestingLengths()) {
        for (std::size_t at = 0; at < n; ++at) {
            for (const char special : specials) {
                KNCString text(n, 'a');
                text[at] = special;
                EXPECT_EQ(KNMimeUtils::findDelimiter(text, ':'), naiveFindDelimiter(text, ':')) << n << ' ' << at;
                EXPECT_EQ(KNMimeUtils::unfoldAndTrim(text), naiveUnfoldAndTrim(text)) << n << ' ' << at;
                // Text without anything to clean comes back as it stands.
                if (special == ':' || special == ')' || special == '\\') {
                    EXPECT_EQ(KNMimeUtils::cleanToken(text, true), text);
                }
            }
            KNCString folded(n, 'a');
            folded.insert(at, "\r\n ");
            EXPECT_EQ(KNMimeUtils::unfoldAndTrim(folded), naiveUnfoldAndTrim(folded)) << n << ' ' << at;
        }
    }
    std::mt19937 rng(17);
    for (int round = 0; round < 3000; ++round) {
        KNCString text(rng() % 200, 'a');
        for (int k = rng() % 4; k > 0 && !text.empty(); --k)
            text[rng() % text.size()] = ":\"()\\\r\n \t"[rng() % 10];
        EXPECT_EQ(KNMimeUtils::findDelimiter(text, ':'), naiveFindDelimiter(text, ':')) << testing::PrintToString(text);
        EXPECT_EQ(KNMimeUtils::unfoldAndTrim(text), naiveUnfoldAndTrim(text)) << testing::PrintToString(text);
    }
}

TEST(Scanning, HeaderLinesAndTheEmptyLineAreFoundAtEveryOffset)
{
    // Without an empty line the separator error wins over a refused header, wherever the
    // refused line is; with one, the first refused header is reported.
    const KNCString noColon = "[MISSING_HEADER_SEPARATOR] Unable to separate label from value";
    for (const char* text : {"junk\r\nA: b\r\n", "A: b\r\njunk\r\n", "A: b\r\n c\r\njunk", "junk\r\n \r\n"})
        EXPECT_EQ(parsedEntity(text), separatorError) << text;
    EXPECT_EQ(parsedEntity("A: b\r\njunk\r\nmore junk\r\n\r\nbody"), noColon);
    EXPECT_EQ(parsedEntity("A: b\r\n c\r\n\r\n"), "A: b c\nbody: ");

    // A lone CR or LF, a CR LF pair, a fold or the empty line's first half at every offset
    // of a header line of every interesting length; the naive split must agree, or both
    // must find no empty line.
    for (const std::size_t n : interestingLengths()) {
        for (std::size_t at = 0; at <= n; ++at) {
            for (const char* inserted : {"\r", "\n", "\r\n ", "\r\nB: c", "\r\n\r"}) {
                KNCString value(n, 'v');
                value.insert(at, inserted);
                const KNCString text = "A: " + value + "\r\nLast: x\r\n\r\nbody\r\n";
                EXPECT_EQ(parsedEntity(text), naiveEntity(text)) << testing::PrintToString(text);
                // Cut just before the empty line is complete: no separator anywhere.
                const KNCString cut = "A: " + value + "\r\n\r";
                if (cut.find("\r\n\r\n") == npos) {
                    EXPECT_EQ(parsedEntity(cut), separatorError) << testing::PrintToString(cut);
                }
            }
        }
    }
}

TEST(Scanning, PrintingRefusesLineBreaksOutsideFoldsAtEveryOffset)
{
    for (const std::size_t n : interestingLengths()) {
        for (std::size_t at = 0; at <= n; ++at) {
            for (const char* inserted : {"\r", "\n", "\r\n", "\r\n ", "\r\n\t", "\n ", "\r\r\n "}) {
                KNCString value(n, 'v');
                value.insert(at, inserted);
                KNMimeHeader header("X-Test");
                header.body()->setValueFromString(value);
                const KNCString expected =
                    naiveHasBareLineBreak(value) ? invalidValue(value) : KNMimeUtils::fold("X-Test: " + value);
                EXPECT_EQ(outcome([&] { return header.asString(); }), expected) << testing::PrintToString(value);
                // Printed inside an entity, a refused header leaves nothing half written.
                KNMimePart part;
                part.insertHeader(header);
                EXPECT_EQ(outcome([&] { return part.asString(); }),
                          naiveHasBareLineBreak(value) ? invalidValue(value) : expected + "\r\n\r\n");
            }
        }
    }
}
