#include <mime/KNMimeError.h>
#include <mime/KNMimeUtils.h>

#include <gtest/gtest.h>

#include <random>

using U = KNMimeUtils;

namespace {

KNCString randomBytes(std::mt19937& rng, std::size_t length)
{
    KNCString data(length, '\0');
    for (char& c : data)
        c = static_cast<char>(rng() % 256);
    return data;
}

// Lines of a CR LF delimited text; the text after the last CR LF counts as a line.
std::vector<KNCString> lines(const KNCString& text)
{
    std::vector<KNCString> result;
    std::size_t from = 0;
    for (std::size_t at; (at = text.find("\r\n", from)) != KNCString::npos; from = at + 2)
        result.push_back(text.substr(from, at - from));
    result.push_back(text.substr(from));
    return result;
}

KNCString base64Error(const KNCString& text)
{
    try {
        U::decodeBase64(text);
    } catch (const KNMimeParseError& e) {
        return e.why();
    }
    return "no error";
}

} // namespace

TEST(Base64, EncodeEdgeCases)
{
    EXPECT_EQ(U::encodeBase64(""), "");
    EXPECT_EQ(U::encodeBase64("a"), "YQ==");
    EXPECT_EQ(U::encodeBase64("ab"), "YWI=");
    EXPECT_EQ(U::encodeBase64("abc"), "YWJj");
    KNCString fullLine;
    for (int i = 0; i < 18; ++i)
        fullLine += "YWFh";
    const KNCString line = U::encodeBase64(KNCString(54, 'a'));
    EXPECT_EQ(line, fullLine + "\r\n");
    const KNCString longer = U::encodeBase64(KNCString(55, 'a'));
    EXPECT_EQ(longer, line + "YQ==");
    EXPECT_EQ(U::encodeBase64(KNCString("\xff\xfe\x00", 3)), "//4A");
}

TEST(Base64, DecodeEdgeCases)
{
    EXPECT_EQ(U::decodeBase64("YWJj\r\nYQ=="), "abca");
    EXPECT_EQ(U::decodeBase64("Y"), "");
    EXPECT_EQ(U::decodeBase64(""), "");
    EXPECT_EQ(U::decodeBase64("===="), "");
    EXPECT_EQ(U::decodeBase64("\r\n\r\n"), "");
    EXPECT_EQ(U::decodeBase64("QQ\r\n=="), "A");
    EXPECT_EQ(U::decodeBase64("QUJD\nREVG"), "ABCDEF");
    EXPECT_EQ(base64Error("YW Jj"), "[INVALID_BASE64_CHAR] ' ' is not a valid base64 character");
    EXPECT_EQ(base64Error("QQ==\r\n"), "[INVALID_BASE64_CHAR] '=' is not a valid base64 character");
    EXPECT_EQ(base64Error("YWJj\t"), "[INVALID_BASE64_CHAR] '\t' is not a valid base64 character");
    EXPECT_EQ(base64Error("YW\xC8j"), "[INVALID_BASE64_CHAR] '\xC8' is not a valid base64 character");
    EXPECT_EQ(base64Error(KNCString("YW\0j", 4)),
        KNCString("[INVALID_BASE64_CHAR] '") + '\0' + "' is not a valid base64 character");
}

TEST(Base64, RoundTripAndLineLength)
{
    std::mt19937 rng(2024);
    for (std::size_t length = 0; length <= 300; ++length) {
        const KNCString data = randomBytes(rng, length);
        const KNCString text = U::encodeBase64(data);
        ASSERT_EQ(U::decodeBase64(text), data) << length;
        const auto ls = lines(text);
        for (std::size_t i = 0; i < ls.size(); ++i) {
            // Every line but the last is full; the text ends with CR LF at multiples of 54.
            EXPECT_EQ(ls[i].size(), i + 1 < ls.size() ? 72u : (length % 54 ? (length % 54 + 2) / 3 * 4 : 0u));
            EXPECT_EQ(ls[i].find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/="),
                KNCString::npos);
        }
    }
}

TEST(QuotedPrintable, EncodeEdgeCases)
{
    EXPECT_EQ(U::encodeQuotedPrintable("a=b"), "a=3Db");
    EXPECT_EQ(U::encodeQuotedPrintable("a \r\nb"), "a =\r\n\r\nb");
    EXPECT_EQ(U::encodeQuotedPrintable("x "), "x =\r\n");
    EXPECT_EQ(U::encodeQuotedPrintable("x\t"), "x\t=\r\n");
    EXPECT_EQ(U::encodeQuotedPrintable(KNCString(100, 'a')), KNCString(74, 'a') + "=\r\n" + KNCString(26, 'a'));
    EXPECT_EQ(U::encodeQuotedPrintable("~!\"#$@[\\]^`{|}"), "=7E=21=22=23=24=40=5B=5C=5D=5E=60=7B=7C=7D");
    EXPECT_EQ(U::encodeQuotedPrintable(KNCString("\r\x00\n\xe9", 4)), "=0D=00=0A=E9");
    EXPECT_EQ(U::encodeQuotedPrintable(KNCString(73, 'a') + "\xe9"), KNCString(73, 'a') + "=\r\n=E9");
}

TEST(QuotedPrintable, DecodeEdgeCases)
{
    EXPECT_EQ(U::decodeQuotedPrintable("a=3db=\r\nc", true), "a=bc");
    EXPECT_EQ(U::decodeQuotedPrintable("a=zz", true), "a=zz");
    EXPECT_EQ(U::decodeQuotedPrintable("a=z=41", true), "a=zA");
    EXPECT_EQ(U::decodeQuotedPrintable("ab  \r\nc", true), "ab\r\nc");
    EXPECT_EQ(U::decodeQuotedPrintable("ab  \r\nc", false), "ab  \r\nc");
    EXPECT_EQ(U::decodeQuotedPrintable("a \t", true), "a");
    EXPECT_EQ(U::decodeQuotedPrintable("a =\r\n\r\nb", true), "a \r\nb"); // kept before a soft break
    EXPECT_EQ(U::decodeQuotedPrintable("a=", true), "a=");
    EXPECT_EQ(U::decodeQuotedPrintable("a=4", true), "a=4");
    EXPECT_EQ(U::decodeQuotedPrintable("=\r", false), "=\r");
    EXPECT_EQ(U::decodeQuotedPrintable("a\rb\n", false), "a\rb\n");
}

TEST(QuotedPrintable, RoundTripAndLineLength)
{
    std::mt19937 rng(99);
    const KNCString textish = "abc  \t\r\n=.xyz";
    for (int round = 0; round < 3000; ++round) {
        KNCString data = randomBytes(rng, rng() % 301);
        if (round % 2 == 1) // mostly text, with blanks before line ends
            for (char& c : data)
                c = textish[static_cast<unsigned char>(c) % textish.size()];
        const KNCString text = U::encodeQuotedPrintable(data);
        ASSERT_EQ(U::decodeQuotedPrintable(text, false), data) << testing::PrintToString(data);
        for (const KNCString& line : lines(text)) {
            EXPECT_LE(line.size(), 75u);
            EXPECT_TRUE(line.empty() || (line.back() != ' ' && line.back() != '\t'));
            for (const char c : line)
                EXPECT_TRUE(c == '\t' || (c >= ' ' && c <= '~')) << int(c);
        }
    }
}

TEST(TransferEncoding, DispatchByName)
{
    EXPECT_EQ(U::decode("YWJj", "BASE64"), "abc");
    EXPECT_EQ(U::decode("x", "BASE64"), U::decode("x", "base64"));
    EXPECT_EQ(U::encode("a=b ", "Quoted-Printable"), "a=3Db =\r\n");
    EXPECT_EQ(U::decode("a=3Db \r\n", "quoted-printable"), "a=b\r\n");
    for (const KNCString name : {"7bit", "8BIT", "Binary"}) {
        EXPECT_EQ(U::encode("\xff\r\n", name), "\xff\r\n");
        EXPECT_EQ(U::decode("\xff\r\n", name), "\xff\r\n");
    }
    try {
        U::encode("data", "x-uuencode");
        FAIL();
    } catch (const KNMimeParseError&) {
        FAIL() << "not a parse error";
    } catch (const KNMimeError& e) {
        EXPECT_EQ(e.why(), "[UNKNOWN_ENCODING] The encoding \"x-uuencode\" is not recognized");
    }
    EXPECT_THROW(U::decode("data", "base-64"), KNMimeError);
}

TEST(TransferEncoding, HostileInputDoesNotCrash)
{
    std::mt19937 rng(5);
    for (int round = 0; round < 3000; ++round) {
        const KNCString data = randomBytes(rng, rng() % 64);
        U::decodeQuotedPrintable(data, true);
        U::decodeQuotedPrintable(data, false);
        U::decodeQuotedPrintable(data + "=", true);
        try {
            U::decodeBase64(data);
        } catch (const KNMimeParseError&) {
        }
    }
}
