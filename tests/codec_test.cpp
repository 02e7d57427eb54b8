// The body codecs against their plain one-character-at-a-time forms, on random inputs and on
// inputs with a special character at every offset of the wide steps.

#include <mail/KNMimeBodyDecoder.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeUtils.h>
#include <mime/internal/KNMimeCodec.h>

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <typeinfo>

using namespace std::string_literals;
namespace Plain = KNMimeCodec::Plain;
using U = KNMimeUtils;
using D = KNMimeBodyDecoder;

namespace {

// What `action` returns, or the type and text of what it throws.
KNCString result(const std::function<KNCString()>& action)
{
    try {
        return "= " + action();
    } catch (const KNxmsg& e) {
        return KNCString("! ") + typeid(e).name() + " " + e.why();
    }
}

// `size` bytes drawn from `alphabet`.
KNCString drawn(std::mt19937& rng, std::size_t size, const KNCString& alphabet)
{
    KNCString text(size, '\0');
    for (char& c : text)
        c = alphabet[rng() % alphabet.size()];
    return text;
}

KNCString randomBytes(std::mt19937& rng, std::size_t size)
{
    KNCString data(size, '\0');
    for (char& c : data)
        c = static_cast<char>(rng());
    return data;
}

// Lengths that end at every offset of the wide steps and blocks, and a few long ones.
std::vector<std::size_t> lengths()
{
    std::vector<std::size_t> all;
    for (std::size_t n = 0; n <= 300; ++n)
        all.push_back(n);
    for (std::size_t n : {511u, 1000u, 4097u, 20000u})
        all.push_back(n);
    return all;
}

const KNCString base64Chars = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

void expectSameBase64Decoding(const KNCString& text)
{
    ASSERT_EQ(result([&] { return U::decodeBase64(text); }), result([&] { return Plain::decodeBase64(text); }))
        << text;
    ASSERT_EQ(D::decodeBase64(text), Plain::decodeBase64Forgiving(text)) << text;
}

void expectSameQpDecoding(const KNCString& text)
{
    ASSERT_EQ(U::decodeQuotedPrintable(text, false), Plain::decodeQuotedPrintable(text, false)) << text;
    ASSERT_EQ(U::decodeQuotedPrintable(text, true), Plain::decodeQuotedPrintable(text, true)) << text;
    ASSERT_EQ(D::decodeQuotedPrintable(text), Plain::decodeQuotedPrintableForgiving(text)) << text;
    ASSERT_EQ(D::decodedSize(text, "quoted-printable"), Plain::decodeQuotedPrintableForgiving(text).size()) << text;
}

} // namespace

TEST(Base64Codec, EncodingMatchesThePlainFormAndDecodesBack)
{
    std::mt19937 rng(71);
    for (const std::size_t n : lengths()) {
        const KNCString data = randomBytes(rng, n);
        const KNCString text = U::encodeBase64(data);
        ASSERT_EQ(text, Plain::encodeBase64(data)) << n;
        ASSERT_EQ(U::decodeBase64(text), data) << n;
        ASSERT_EQ(D::decodeBase64(text), data) << n;
        ASSERT_EQ(D::decodedSize(text, "base64"), n);
    }
}

TEST(Base64Codec, DecodingMatchesThePlainFormForEveryCharacterAtEveryOffset)
{
    std::mt19937 rng(72);
    // One odd character at every offset of encoded texts: line breaks, padding, bad bytes.
    for (const std::size_t n : {0u, 1u, 2u, 3u, 5u, 6u, 53u, 54u, 55u, 60u, 110u}) {
        const KNCString text = U::encodeBase64(randomBytes(rng, n));
        for (std::size_t at = 0; at <= text.size(); ++at) {
            for (const char odd : {'\r', '\n', '=', ' ', '\0', '\x80', '\xff', '-', '.'}) {
                KNCString inserted = text;
                inserted.insert(at, 1, odd);
                expectSameBase64Decoding(inserted);
                if (at < text.size()) {
                    KNCString replaced = text;
                    replaced[at] = odd;
                    expectSameBase64Decoding(replaced);
                }
            }
        }
    }
    // Line breaks of every shape at every offset of a clean text, alone and beside an odd byte.
    const KNCString clean = drawn(rng, 100, base64Chars);
    for (std::size_t at = 0; at <= clean.size(); ++at) {
        for (const KNCString& breaks : {"\r\n"s, "\r\n\r\n"s, "\n\r"s, "\r\r\n"s, "\r\n="s, "\r\n."s}) {
            KNCString text = clean;
            text.insert(at, breaks);
            expectSameBase64Decoding(text);
            expectSameBase64Decoding(text + "\r\n" + text);
        }
    }
    // Random texts of the alphabet with some line breaks, padding and bad bytes mixed in.
    const KNCString mostly = base64Chars + base64Chars + base64Chars + "\r\n";
    for (const std::size_t n : lengths()) {
        expectSameBase64Decoding(drawn(rng, n, mostly));
        expectSameBase64Decoding(drawn(rng, n, mostly + "=!"));
        expectSameBase64Decoding(drawn(rng, n, base64Chars + "\r\n=\t \xe9"));
        // Long clean runs with one bad byte at a random place.
        KNCString clean = drawn(rng, n, base64Chars);
        if (n != 0)
            clean[rng() % n] = static_cast<char>(rng());
        expectSameBase64Decoding(clean);
    }
}

TEST(QuotedPrintableCodec, EncodingMatchesThePlainFormAndDecodesBack)
{
    std::mt19937 rng(73);
    const std::vector<KNCString> alphabets = {
        "abcdefghijklmnopqrstuvwxyz",                        // no escape at all: soft breaks only
        "abcdef ghij\tklm=nop\r\nqrs",                       // blanks before line ends, '='
        "abc \t\r\n",                                        // many line ends and blanks
        KNCString("ab c\r\n\x80\xc3\xa9~!{}[]\x00\x7f", 18), // escapes of every kind
        "\r\n\r\r\n\n=  ",                                   // lone CR and LF
    };
    for (const std::size_t n : lengths()) {
        std::vector<KNCString> inputs = {randomBytes(rng, n)};
        for (const KNCString& alphabet : alphabets)
            inputs.push_back(drawn(rng, n, alphabet));
        for (const KNCString& data : inputs) {
            const KNCString text = U::encodeQuotedPrintable(data);
            ASSERT_EQ(text, Plain::encodeQuotedPrintable(data)) << data;
            ASSERT_EQ(U::decodeQuotedPrintable(text, false), data) << data;
            ASSERT_EQ(U::decodeQuotedPrintable(text, true), data) << data;
            ASSERT_EQ(D::decodeQuotedPrintable(text), data) << data;
        }
    }
    // Literal runs that end at every column of a line, then one byte of each kind.
    for (std::size_t run = 0; run <= 160; ++run) {
        for (const KNCString& tail : {"="s, " "s, "\r\n"s, " \r\n"s, "\xe9\xe9"s, "x"s, "\r"s}) {
            const KNCString data = KNCString(run, 'a') + tail + KNCString(run % 70, 'b');
            ASSERT_EQ(U::encodeQuotedPrintable(data), Plain::encodeQuotedPrintable(data)) << data;
        }
    }
}

TEST(QuotedPrintableCodec, DecodingMatchesThePlainFormForEveryCharacterAtEveryOffset)
{
    std::mt19937 rng(74);
    // One odd piece at every offset of encoded texts.
    const KNCString text = U::encodeQuotedPrintable(drawn(rng, 200, "abc de\xe9=\r\n\t"));
    for (std::size_t at = 0; at <= text.size(); ++at) {
        for (const KNCString& odd : {"="s, "\r"s, "\n"s, "\r\n"s, " "s, "\t"s, "=\r\n"s, "= \r\n"s, "=4"s, "=4g"s,
                                     "=g4"s, "=a9"s, "=="s, "=\r"s, "=\n"s}) {
            KNCString inserted = text;
            inserted.insert(at, odd);
            expectSameQpDecoding(inserted);
        }
    }
    // Blanks (written or escaped) before line ends, in runs longer than a block.
    for (const std::size_t run : {1u, 63u, 64u, 65u, 150u}) {
        const KNCString blanks(run, ' ');
        for (const KNCString& tail : {"\r\n"s, "=\r\n"s, "=20\r\n"s, "\t=20 \r\nx"s, ""s, "\n"s, "="s}) {
            expectSameQpDecoding("a" + blanks + tail + blanks + "b" + tail);
            expectSameQpDecoding(KNCString(run, 'x') + "=20" + blanks + tail + KNCString(100, 'y') + blanks);
        }
    }
    // Random texts with many escapes, good and bad, blanks and line ends of every kind.
    const std::vector<KNCString> alphabets = {
        "abc=", "ab=3D4f\r\n", "a =\r\n\t", "=0123456789ABCDEFabcdefg", "x \t=\r\n\r\n==", "ab\n=\n \r",
        "abcdefghijklmnopqrstuvwxyz0123456789 ", "abcdefghijklmnopqrstuvwxyz=\r\n"};
    for (const std::size_t n : lengths())
        for (const KNCString& alphabet : alphabets)
            expectSameQpDecoding(drawn(rng, n, alphabet));
}
