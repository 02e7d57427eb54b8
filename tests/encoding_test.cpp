#include <mime/KNMimeError.h>
#include <mime/KNMimeUtils.h>

#include <gtest/gtest.h>
#include <tests/TestSupport.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <typeinfo>

using U = KNMimeUtils;
using namespace std::string_literals;

TEST(Base64, ExactRoundTripAndBadInput)
{
    EXPECT_EQ(U::encodeBase64("a"), "YQ==");
    EXPECT_EQ(U::encodeBase64("ab"), "YWI=");
    EXPECT_EQ(U::encodeBase64(KNCString("\xff\xfe\x00", 3)), "//4A");
    // Only trailing '=' is padding, so padding before a line break is refused and after one accepted.
    const std::pair<const char*, const char*> decoded[] = {{"YWJj\r\nYQ==", "abca"}, {"Y", ""}, {"====", ""},
        {"\r\n\r\n", ""}, {"QQ\r\n==", "A"}, {"QUJD\nREVG", "ABCDEF"},
        {"Q\r\nUJ\nDRE\r\nV\nG", "ABCDEF"}}; // groups split by line breaks
    for (const auto& [text, data] : decoded)
        EXPECT_EQ(U::decodeBase64(text), data) << text;
    for (const KNCString& bad : {"YW Jj"s, "QQ==\r\n"s, "YW\xC8j"s, "YW\0j"s})
        EXPECT_EQ(errorText<KNMimeParseError>([&] { U::decodeBase64(bad); }),
            KNCString("[INVALID_BASE64_CHAR] '") + bad[2] + "' is not a valid base64 character");

    std::mt19937 rng(2024);
    for (std::size_t length = 0; length <= 300; ++length) {
        KNCString data(length, '\0');
        for (char& c : data)
            c = static_cast<char>(rng());
        const KNCString text = U::encodeBase64(data);
        ASSERT_EQ(U::decodeBase64(text), data) << length;
        errorText<KNMimeParseError>([&] { U::decodeBase64(data); }); // raw bytes: a result or a parse error
        // Lines of 72, each ended by CR LF, the last one too when the length is a multiple of 54.
        EXPECT_EQ(text.size(), (length + 2) / 3 * 4 + length / 54 * 2) << length;
        for (std::size_t at = 72; at < text.size(); at += 74)
            EXPECT_EQ(text.compare(at, 2, "\r\n"), 0) << length;
    }
}

TEST(QuotedPrintable, ExactRoundTripAndLineLength)
{
    EXPECT_EQ(U::encodeQuotedPrintable("a=b"), "a=3Db");
    EXPECT_EQ(U::encodeQuotedPrintable("a \r\nb"), "a =\r\n\r\nb");
    EXPECT_EQ(U::encodeQuotedPrintable(KNCString(100, 'a')), KNCString(74, 'a') + "=\r\n" + KNCString(26, 'a'));
    EXPECT_EQ(U::encodeQuotedPrintable("~!\"#$@[\\]^`{|}"), "=7E=21=22=23=24=40=5B=5C=5D=5E=60=7B=7C=7D");
    EXPECT_EQ(U::encodeQuotedPrintable(KNCString("\r\x00\n\xe9", 4)), "=0D=00=0A=E9");
    EXPECT_EQ(U::decodeQuotedPrintable("a=3db=\r\nc", true), "a=bc");
    EXPECT_EQ(U::decodeQuotedPrintable("a=z=41", true), "a=zA"); // a bad escape is kept, then decoding resumes
    EXPECT_EQ(U::decodeQuotedPrintable("ab  \r\nc", true), "ab\r\nc");
    EXPECT_EQ(U::decodeQuotedPrintable("ab  \r\nc", false), "ab  \r\nc");
    EXPECT_EQ(U::decodeQuotedPrintable("a \t", true), "a");
    EXPECT_EQ(U::decodeQuotedPrintable("a =\r\n\r\nb", true), "a \r\nb"); // kept before a soft break
    EXPECT_EQ(U::decodeQuotedPrintable("a=4", true), "a=4");
    EXPECT_EQ(U::decodeQuotedPrintable("a\rb\n", false), "a\rb\n");
    // A '=' without a CR LF pair, or with one hexadecimal digit, stays literal; a decoded
    // blank ending a line is trailing white space like any other.
    EXPECT_EQ(U::decodeQuotedPrintable("a=\rb=\nc=4G=G4", false), "a=\rb=\nc=4G=G4");
    EXPECT_EQ(U::decodeQuotedPrintable("=20\r\nx", true), "\r\nx");
    EXPECT_EQ(U::encodeQuotedPrintable("\r\nx"), "\r\nx");
    // Hexadecimal digits of either case, at both ends of each range.
    EXPECT_EQ(U::decodeQuotedPrintable("=3a=3f=3A=3F=0a=FA=af=09", false), ":?:?\n\xfa\xaf\t");
    // A blank before each of 3000 line ends: every one protected by a soft break, so the
    // output runs through several blocks of the encoder's buffer, and (with lines of this
    // length) one soft break falls exactly on the end of a block.
    KNCString blanks;
    KNCString protectedBlanks;
    for (int i = 0; i < 3000; ++i) {
        blanks += "words \r\n";
        protectedBlanks += "words =\r\n\r\n";
    }
    EXPECT_EQ(U::encodeQuotedPrintable(blanks), protectedBlanks);
    EXPECT_EQ(U::decodeQuotedPrintable(protectedBlanks, true), blanks);

    std::mt19937 rng(99);
    const KNCString textish = "abc  \t\r\n=.xyz";
    const auto printable = [](char c) { return c == '\t' || (c >= ' ' && c <= '~'); };
    for (int round = 0; round < 3000; ++round) {
        KNCString data(rng() % 301, '\0');
        for (char& c : data) // every other round text, with blanks before line ends
            c = round % 2 ? textish[rng() % textish.size()] : static_cast<char>(rng());
        const KNCString text = U::encodeQuotedPrintable(data);
        ASSERT_EQ(U::decodeQuotedPrintable(text, false), data) << testing::PrintToString(data);
        U::decodeQuotedPrintable(data + "=", true); // raw bytes and a cut escape must not overrun
        std::istringstream lines(U::replaceLineDelimiter(text, "\n"));
        for (KNCString line; std::getline(lines, line);) {
            EXPECT_LE(line.size(), 75u);
            EXPECT_TRUE(line.empty() || (line.back() != ' ' && line.back() != '\t'));
            EXPECT_TRUE(std::all_of(line.begin(), line.end(), printable)) << line;
        }
    }
}

TEST(TransferEncoding, DispatchByNameIgnoringCase)
{
    EXPECT_EQ(U::decode("YWJj", "BASE64"), "abc");
    EXPECT_EQ(U::encode("a=b ", "Quoted-Printable"), "a=3Db =\r\n");
    EXPECT_EQ(U::decode("a=3Db \r\n", "quoted-printable"), "a=b\r\n"); // strips trailing blanks
    for (const KNCString name : {"7bit", "8BIT", "Binary"}) // unchanged, without checking the bytes fit the name
        EXPECT_EQ(U::encode("\xff\r\n", name) + U::decode("\xff\r", name), "\xff\r\n\xff\r");
    for (const auto code : {&U::encode, &U::decode})
        EXPECT_EQ(errorText<KNMimeError>([&] { code("data", "base-64"); }),
            "[UNKNOWN_ENCODING] The encoding \"base-64\" is not recognized");
}
