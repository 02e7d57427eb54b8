// The forgiving mail layer on the decoding side: charsets to UTF-8, header values for
// display, RFC 2231 parameters and file names, bodies by their transfer encoding, and a
// message read through KNMimeMessageView.

#include <mail/KNMimeMail.h>

#include <gtest/gtest.h>
#include <tests/TestSupport.h>

#include <random>
#include <string>

namespace {

// A message written with LF line ends for readability, given CR LF ends as mail has them.
KNCString crlf(const std::string& text)
{
    KNCString out;
    for (const char c : text) {
        if (c == '\n')
            out += '\r';
        out += c;
    }
    return out;
}

KNMimePart message(const std::string& text)
{
    return parsedAs<KNMimePart>(crlf(text));
}

// A random UTF-8 text of ASCII letters, blanks, punctuation and characters of two to four bytes.
KNCString randomUtf8(std::mt19937& rng, std::size_t maxLength)
{
    static const char* const pieces[] = {"a", "Z", " ", "  ", ",", "\"", "=?", "?=", "_", "=", "\xC3\xBC",
                                         "\xC3\x9F", "\xE2\x82\xAC", "\xE6\x97\xA5", "\xF0\x9F\x98\x80", "x.y"};
    std::uniform_int_distribution<std::size_t> count(0, maxLength);
    std::uniform_int_distribution<std::size_t> pick(0, std::size(pieces) - 1);
    KNCString text;
    for (std::size_t n = count(rng); n > 0; --n)
        text += pieces[pick(rng)];
    return text;
}

TEST(Charset, AliasesAndTheCharsetsMailUses)
{
    EXPECT_EQ(KNMimeCharset::canonicalName(" Latin1 "), "windows-1252");
    EXPECT_EQ(KNMimeCharset::canonicalName("UTF8"), "utf-8");
    EXPECT_EQ(KNMimeCharset::canonicalName("ks_c_5601-1987"), "cp949");
    EXPECT_EQ(KNMimeCharset::canonicalName("GB2312"), "gbk");
    EXPECT_EQ(KNMimeCharset::canonicalName("utf-8*en"), "utf-8");
    EXPECT_EQ(KNMimeCharset::canonicalName(""), "us-ascii");

    // iso-8859-1 is read as windows-1252, so 0x80 is the euro sign.
    EXPECT_EQ(KNMimeCharset::toUtf8("\xE9t\xE9 \x80", "iso-8859-1").text, "\xC3\xA9t\xC3\xA9 \xE2\x82\xAC");
    EXPECT_EQ(KNMimeCharset::toUtf8("\x93\xFA\x96\x7B", "Shift_JIS").text, "\xE6\x97\xA5\xE6\x9C\xAC");
    EXPECT_EQ(KNMimeCharset::toUtf8("\x81\x40", "gb2312").text, "\xE4\xB8\x82"); // a GBK-only character
    EXPECT_EQ(KNMimeCharset::toUtf8("\xB0\xA1", "ks_c_5601-1987").text, "\xEA\xB0\x80");
    EXPECT_EQ(KNMimeCharset::toUtf8("caf\xC3\xA9", "x-unknown").text, "caf\xC3\xA9");
    EXPECT_EQ(KNMimeCharset::toUtf8("caf\xE9", "x-unknown").text, "caf\xC3\xA9");
    EXPECT_TRUE(KNMimeCharset::isKnown("koi8-r"));
    EXPECT_FALSE(KNMimeCharset::isKnown("no-such-charset"));
    EXPECT_FALSE(KNMimeCharset::isKnown("utf-8//IGNORE"));
}

TEST(Charset, BadBytesBecomeReplacementCharacters)
{
    KNMimeCharset::Conversion c = KNMimeCharset::toUtf8("a\xFF" "b\xC3", "utf-8");
    EXPECT_EQ(c.text, "a\xEF\xBF\xBD" "b\xEF\xBF\xBD");
    EXPECT_TRUE(c.lossy);
    EXPECT_FALSE(c.unknownCharset);

    c = KNMimeCharset::toUtf8("\x93\xFA\x93", "shift_jis"); // a character cut at the end
    EXPECT_EQ(c.text, "\xE6\x97\xA5\xEF\xBF\xBD");
    EXPECT_TRUE(c.lossy);

    c = KNMimeCharset::toUtf8("plain \xC3\xBC", "x-no-such-charset");
    EXPECT_EQ(c.text, "plain \xC3\xBC");
    EXPECT_TRUE(c.unknownCharset);
    EXPECT_FALSE(c.lossy);

    EXPECT_FALSE(KNMimeCharset::isValidUtf8("\xC0\xAF"));         // overlong
    EXPECT_FALSE(KNMimeCharset::isValidUtf8("\xED\xA0\x80"));     // surrogate
    EXPECT_FALSE(KNMimeCharset::isValidUtf8("\xF4\x90\x80\x80")); // past U+10FFFF
    EXPECT_TRUE(KNMimeCharset::isValidUtf8("\xF0\x9F\x98\x80"));

    // Whatever the bytes, the output is valid UTF-8.
    std::mt19937 rng(9);
    std::uniform_int_distribution<int> byte(0, 255);
    for (int round = 0; round < 300; ++round) {
        KNCString bytes;
        for (int n = round % 40; n > 0; --n)
            bytes += static_cast<char>(byte(rng));
        for (const char* charset : {"utf-8", "windows-1252", "shift_jis", "x-unknown", "utf-16le"})
            ASSERT_TRUE(KNMimeCharset::isValidUtf8(KNMimeCharset::toUtf8(bytes, charset).text)) << charset;
    }
}

TEST(HeaderText, EncodedWordsDecodedToUtf8)
{
    EXPECT_EQ(KNMimeHeaderText::decode("=?iso-8859-1?q?Caf=E9_cr=E8me?= br\xFBl\xE9" "e"),
              "Caf\xC3\xA9 cr\xC3\xA8me br\xC3\xBBl\xC3\xA9" "e");
    // "Grüße" with the ü cut between two B words.
    EXPECT_EQ(KNMimeHeaderText::decode("=?UTF-8?B?R3LD?=\r\n =?utf-8?b?vMOfZQ==?="), "Gr\xC3\xBC\xC3\x9F" "e");
    EXPECT_EQ(KNMimeHeaderText::decode("Re: =?shift_jis?B?k/qWe4zqgsyMj5a8?="),
              "Re: \xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E\xE3\x81\xAE\xE4\xBB\xB6\xE5\x90\x8D");
    // Blanks between encoded words go, blanks next to plain text stay.
    EXPECT_EQ(KNMimeHeaderText::decode("=?utf-8?q?a?=  \t=?utf-8?q?b?= c =?utf-8?q?d?="), "ab c d");
    // Words in different charsets are still joined.
    EXPECT_EQ(KNMimeHeaderText::decode("=?iso-8859-1?q?=FC?= =?utf-8?q?=C3=BC?="), "\xC3\xBC\xC3\xBC");
    // As some mailers write them: inside quotes, and glued to text.
    EXPECT_EQ(KNMimeHeaderText::decode("\"=?utf-8?Q?M=C3=BCller?=\""), "\"M\xC3\xBCller\"");
    EXPECT_EQ(KNMimeHeaderText::decode("x=?utf-8?Q?=C3=BC?=y"), "x\xC3\xBCy");
    // The language suffix of RFC 2231 in an encoded word.
    EXPECT_EQ(KNMimeHeaderText::decode("=?UTF-8*de?Q?Stra=C3=9Fe?="), "Stra\xC3\x9F" "e");
}

TEST(HeaderText, MalformedWordsKeptAsWritten)
{
    for (const char* value : {"=?utf-8?x?abc?=", "=?utf-8?q?never closed", "=??q?abc?=", "a =? b ?= c", "=?"}) {
        const KNMimeHeaderText::Decoded d = KNMimeHeaderText::decodeWithReport(value);
        EXPECT_EQ(d.text, value);
    }
    EXPECT_TRUE(KNMimeHeaderText::decodeWithReport("=?utf-8?x?abc?=").malformed);
    EXPECT_EQ(KNMimeHeaderText::decode("=?utf-8?q?bad=Zescape?="), "bad=Zescape");
    const KNMimeHeaderText::Decoded unknown = KNMimeHeaderText::decodeWithReport("=?x-klingon?q?abc?=");
    EXPECT_EQ(unknown.text, "abc");
    EXPECT_TRUE(unknown.unknownCharset);

    // Many unterminated words: the scan stays linear and keeps everything.
    KNCString many;
    for (int i = 0; i < 20000; ++i)
        many += "=?a?q?x";
    EXPECT_TRUE(KNMimeHeaderText::decode(many) == many);
}

TEST(HeaderText, EncodeReadsBackEqual)
{
    EXPECT_EQ(KNMimeHeaderText::encode("Plain ASCII subject"), "Plain ASCII subject");
    EXPECT_EQ(KNMimeHeaderText::encode("Gr\xC3\xBC\xC3\x9F" "e aus Berlin"), "=?UTF-8?B?R3LDvMOfZQ==?= aus Berlin");
    EXPECT_EQ(KNMimeHeaderText::encodePhrase("Jane Doe"), "Jane Doe");
    EXPECT_EQ(KNMimeHeaderText::encodePhrase("Doe, Jane"), "\"Doe, Jane\"");

    std::mt19937 rng(2047);
    for (int round = 0; round < 500; ++round) {
        const KNCString text = randomUtf8(rng, 60);
        const KNCString encoded = KNMimeHeaderText::encode(text);
        ASSERT_EQ(KNMimeHeaderText::decode(encoded), text) << encoded;
        const KNCString words = KNMimeHeaderText::encodeWords(text);
        ASSERT_EQ(KNMimeHeaderText::decode(words), text) << words;
        // Every word is at most 75 characters and holds whole characters only.
        std::size_t start = 0;
        while (start < words.size()) {
            std::size_t end = words.find(' ', start);
            if (end == KNCString::npos)
                end = words.size();
            ASSERT_LE(end - start, 75u);
            const KNMimeHeaderText::Decoded one = KNMimeHeaderText::decodeWithReport(words.substr(start, end - start));
            ASSERT_FALSE(one.lossy) << words;
            start = end + 1;
        }
    }
}

TEST(ExtendedParameters, Rfc2231AndContinuations)
{
    // "Übersicht März.pdf", the ä cut between sections, sections written out of order.
    const KNMimeExtendedParameters p = KNMimeExtendedParameters::fromHeaderValue(
        "Attachment; filename*2*=%A4rz.pdf; filename*0*=UTF-8''%C3%9Cbersicht%20M;\r\n"
        " filename*1*=%C3; size=42 (bytes); title*=iso-8859-1'de'%FCber%ZZ");
    EXPECT_EQ(p.getValue(), "attachment");
    EXPECT_EQ(p.get("FILENAME"), "\xC3\x9C" "bersicht M\xC3\xA4rz.pdf");
    EXPECT_EQ(p.get("size"), "42");
    EXPECT_EQ(p.get("title"), "\xC3\xBC" "ber%ZZ");
    EXPECT_EQ(p.get("missing"), std::nullopt);
    EXPECT_EQ(p.getCount(), 5u);

    // An extended form wins over the plain one; a plain section joins extended ones as is.
    const auto mixed = KNMimeExtendedParameters::fromHeaderValue(
        "inline; name=\"fallback.txt\"; name*1=\" part\"; name*0*=utf-8''first");
    EXPECT_EQ(mixed.get("name"), "first part");
    // Plain values: encoded words decoded, raw 8-bit read as windows-1252 when not UTF-8.
    EXPECT_EQ(KNMimeExtendedParameters::fromHeaderValue("a; f=\"=?UTF-8?B?w5xiZXJzaWNodC5wZGY=?=\"").get("f"),
              "\xC3\x9C" "bersicht.pdf");
    EXPECT_EQ(KNMimeExtendedParameters::fromHeaderValue("a; f=M\xE4rz.txt").get("f"), "M\xC3\xA4rz.txt");
    // Forgiving reading: unterminated quote, parameter without '=', quoted escapes.
    const auto odd = KNMimeExtendedParameters::fromHeaderValue("text/plain; junk; q=\"a\\\"b; c");
    EXPECT_EQ(odd.get("q"), "a\"b; c");
    EXPECT_EQ(odd.get("junk"), std::nullopt);
}

TEST(ExtendedParameters, FileNameWrittenReadsBackEqual)
{
    std::mt19937 rng(2231);
    for (int round = 0; round < 200; ++round) {
        const KNCString name = randomUtf8(rng, 80);
        KNMimeContentDisposition disposition("attachment", "");
        for (const KNMimeParameter& p : KNMimeExtendedParameters::encode("filename", name, 20 + round % 50))
            disposition.insertParameter(p);
        KNMimePart part;
        part.insertHeader(KNMimeContentDispositionHeader(disposition));
        const KNMimePart reread = parsedAs<KNMimePart>(part.asString());
        ASSERT_EQ(KNMimeMessageView::filename(reread), name) << part.asString();
    }
}

TEST(BodyDecoder, Base64AsMailNeeds)
{
    // The padding followed by a line end: refused by the strict codec, read here.
    EXPECT_NE(errorText<KNMimeParseError>([] { KNMimeUtils::decodeBase64("aGVsbG8=\r\n"); }), "no error");
    EXPECT_EQ(KNMimeBodyDecoder::decodeBase64("aGVsbG8=\r\n"), "hello");
    EXPECT_EQ(KNMimeBodyDecoder::decodeBase64("aGV s\tbG8*!=\r\n-- \r\nsignature"), "hello");
    EXPECT_EQ(KNMimeBodyDecoder::decodeBase64("aGVsbA"), "hell"); // no padding
    EXPECT_EQ(KNMimeBodyDecoder::decodeBase64("aGVsb"), "hel");
    EXPECT_EQ(KNMimeBodyDecoder::decodeBase64("a"), "");

    // On clean input both decoders agree.
    std::mt19937 rng(64);
    std::uniform_int_distribution<int> byte(0, 255);
    for (int round = 0; round < 200; ++round) {
        KNCString data;
        for (int n = round * 3 % 301; n > 0; --n)
            data += static_cast<char>(byte(rng));
        const KNCString encoded = KNMimeUtils::encodeBase64(data);
        ASSERT_EQ(KNMimeBodyDecoder::decodeBase64(encoded), data);
        ASSERT_EQ(KNMimeBodyDecoder::decodeBase64(encoded), KNMimeUtils::decodeBase64(encoded));
    }
}

TEST(BodyDecoder, QuotedPrintableUUEncodeAndNames)
{
    EXPECT_EQ(KNMimeBodyDecoder::decodeQuotedPrintable("soft=  \r\nbreak=20here  \r\n=ZZ =4 100%=\nend=3D"),
              "softbreak here\r\n=ZZ =4 100%end=");
    EXPECT_EQ(KNMimeBodyDecoder::decodeQuotedPrintable("caf=e9\nx"), "caf\xE9\nx");

    EXPECT_EQ(KNMimeBodyDecoder::decodeUUEncode("begin 644 hi.txt\r\n,:&5L;&\\L('=O<FQD\r\n`\r\nend\r\n"),
              "hello, world");
    EXPECT_EQ(KNMimeBodyDecoder::decodeUUEncode(",:&5L;&\\L('=O<FQD\n"), "hello, world");
    EXPECT_EQ(KNMimeBodyDecoder::decodeUUEncode("Here it is:\n\nbegin 600 a\n#86)C\n`\nend\ntrailer\n"), "abc");

    using E = KNMimeBodyDecoder::Encoding;
    EXPECT_EQ(KNMimeBodyDecoder::encodingByName("7-bit"), E::Identity);
    EXPECT_EQ(KNMimeBodyDecoder::encodingByName("8 bit"), E::Identity);
    EXPECT_EQ(KNMimeBodyDecoder::encodingByName(""), E::Identity);
    EXPECT_EQ(KNMimeBodyDecoder::encodingByName("Quoted Printable"), E::QuotedPrintable);
    EXPECT_EQ(KNMimeBodyDecoder::encodingByName("quoted_printable"), E::QuotedPrintable);
    EXPECT_EQ(KNMimeBodyDecoder::encodingByName(" BASE64 (as usual)"), E::Base64);
    EXPECT_EQ(KNMimeBodyDecoder::encodingByName("x-uuencode"), E::UUEncode);
    EXPECT_EQ(KNMimeBodyDecoder::encodingByName("x-gzip"), E::Unknown);

    const KNMimeBodyDecoder::Body unknown = KNMimeBodyDecoder::decode("a=3Db", "x-gzip");
    EXPECT_EQ(unknown.data, "a=3Db");
    EXPECT_TRUE(unknown.unknownEncoding);
    EXPECT_EQ(KNMimeBodyDecoder::convertLineEnds("a\r\nb\rc\nd", KNMimeBodyDecoder::LineEnds::CRLF), "a\r\nb\r\nc\r\nd");
    EXPECT_EQ(KNMimeBodyDecoder::convertLineEnds("a\r\nb\rc\nd\r", KNMimeBodyDecoder::LineEnds::LF), "a\nb\nc\nd\n");
}

TEST(BodyDecoder, TextOfAPart)
{
    const KNMimePart latin = message("Content-Type: text/plain; charset=\"ISO-8859-1\"\n"
                                     "Content-Transfer-Encoding: Quoted Printable\n\n"
                                     "Gr=FC=DFe,=20\nbis bald=\n!\n");
    const KNMimeBodyDecoder::Text t = KNMimeBodyDecoder::text(latin);
    EXPECT_EQ(t.text, "Gr\xC3\xBC\xC3\x9F" "e, \nbis bald!\n");
    EXPECT_EQ(t.charset, "windows-1252");
    EXPECT_FALSE(t.lossy || t.unknownCharset || t.unknownEncoding);

    const KNMimePart sevenBit = message("Content-Type: text/plain\nContent-Transfer-Encoding: 7-bit\n\nplain text\n");
    EXPECT_EQ(KNMimeBodyDecoder::text(sevenBit, KNMimeBodyDecoder::LineEnds::AsStored).text, "plain text\r\n");
    EXPECT_EQ(KNMimeBodyDecoder::text(sevenBit).charset, "us-ascii");

    const KNMimePart padded = message("Content-Type: text/plain; charset=utf-8\nContent-Transfer-Encoding: base64\n\n"
                                      "R3LDvMOfZQ=\nMore text after the padding\n");
    EXPECT_EQ(KNMimeBodyDecoder::text(padded).text, "Gr\xC3\xBC\xC3\x9F" "e");

    const KNMimePart odd = message("Content-Type: text/plain; charset=x-klingon\nContent-Transfer-Encoding: x-zip\n\nok\n");
    const KNMimeBodyDecoder::Text o = KNMimeBodyDecoder::text(odd);
    EXPECT_EQ(o.text, "ok\n");
    EXPECT_TRUE(o.unknownCharset);
    EXPECT_TRUE(o.unknownEncoding);
}

const std::string mixed =
    "From: =?UTF-8?Q?J=C3=BCrgen?= <juergen@example.org>\n"
    "Subject: =?iso-8859-1?q?Bericht_f=FCr?= Q3\n"
    "Content-Type: multipart/mixed; boundary=outer\n\n"
    "--outer\n"
    "Content-Type: multipart/alternative; boundary=alt\n\n"
    "--alt\n"
    "Content-Type: text/plain; charset=utf-8\n\n"
    "Der Bericht.\n"
    "--alt\n"
    "Content-Type: multipart/related; boundary=rel; start=\"<page@x>\"\n\n"
    "--rel\n"
    "Content-Type: image/png\nContent-ID: <logo@x>\nContent-Transfer-Encoding: base64\n\n"
    "iVBORw0KGgo=\n"
    "--rel\n"
    "Content-Type: text/html; charset=utf-8\nContent-ID: <page@x>\n\n"
    "<p>Der Bericht.</p>\n"
    "--rel--\n"
    "--alt--\n"
    "--outer\n"
    "Content-Type: application/pdf; name=\"fallback.pdf\"\n"
    "Content-Disposition: attachment;\n filename*0*=UTF-8''%C3%9Cbersicht;\n filename*1=.pdf\n"
    "Content-Transfer-Encoding: base64\n\n"
    "JVBERi0xLjQK\n"
    "--outer\n"
    "Content-Type: text/plain; name=notes.txt\n\n"
    "notes\n"
    "--outer\n"
    "Content-Type: message/rfc822\n\n"
    "Subject: inner\nContent-Type: multipart/mixed; boundary=in\n\n"
    "--in\n\ninner text\n--in\nContent-Type: image/gif\n\nGIF\n--in--\n"
    "--outer--\n";

TEST(MessageView, WalkMainTextAttachmentsAndHeaders)
{
    const KNMimeMessageView view(message(mixed));
    KNCString paths;
    for (const KNMimeMessageView::Entry& e : view.walk())
        paths += "[" + e.path + " " + e.mediaType + " " + std::to_string(e.depth) + "]";
    EXPECT_EQ(paths, "[ multipart/mixed 0][1 multipart/alternative 1][1.1 text/plain 2]"
                     "[1.2 multipart/related 2][1.2.1 image/png 3][1.2.2 text/html 3]"
                     "[2 application/pdf 1][3 text/plain 1][4 message/rfc822 1]");

    EXPECT_EQ(view.mainText(), "Der Bericht.");
    EXPECT_EQ(view.mainText(KNMimeMessageView::TextPreference::Html), "<p>Der Bericht.</p>");

    KNCString list;
    for (const KNMimeMessageView::Attachment& a : view.attachments())
        list += "[" + a.path + " " + a.filename + " " + a.mediaType + " " + std::to_string(a.decodedSize)
            + (a.isInline ? " inline]" : "]");
    EXPECT_EQ(list, "[1.2.1  image/png 8 inline][2 \xC3\x9C" "bersicht.pdf application/pdf 9]"
                    "[3 notes.txt text/plain 5][4  message/rfc822 126]");

    EXPECT_EQ(view.headerText("subject"), "Bericht f\xC3\xBCr Q3");
    EXPECT_EQ(view.header("Subject"), "=?iso-8859-1?q?Bericht_f=FCr?= Q3");
    EXPECT_EQ(view.header("Cc"), std::nullopt);
    const auto type = KNMimeMessageView::typedHeader<KNMimeContentTypeHeader>(view.getMessage());
    ASSERT_TRUE(type.has_value());
    EXPECT_EQ(type->getContentType().getParameterValue("boundary"), "outer");
    EXPECT_FALSE(KNMimeMessageView::typedHeader<KNMimeContentDispositionHeader>(view.getMessage()).has_value());
}

TEST(MessageView, NestedMessagesOpenedThroughTheHook)
{
    int opened = 0;
    const KNMimeMessageView view(message(mixed), [&opened](const KNMimePart& leaf) -> std::optional<KNMimePart> {
        ++opened;
        return parsedAs<KNMimePart>(leaf.getBody());
    });
    KNCString paths;
    for (const KNMimeMessageView::Entry& e : view.walk())
        paths += "[" + e.path + " " + e.mediaType + " " + std::to_string(e.nesting) + "]";
    EXPECT_EQ(opened, 1);
    EXPECT_NE(paths.find("[4 message/rfc822 0][4.1 multipart/mixed 1][4.1.1 text/plain 1][4.1.2 image/gif 1]"), KNCString::npos)
        << paths;
    // Attachments do not enter nested messages.
    EXPECT_EQ(view.attachments().size(), 4u);

    // The nested message is N.1 (as the reader numbers it); an opener that keeps returning a
    // message stops at the nesting limit.
    const KNMimePart forwarded = message("Content-Type: message/rfc822\n\nSubject: x\n\nbody\n");
    const KNMimeMessageView loop(forwarded, [](const KNMimePart& leaf) -> std::optional<KNMimePart> { return leaf; });
    const std::vector<KNMimeMessageView::Entry> entries = loop.walk();
    ASSERT_EQ(entries.size(), 33u);
    EXPECT_EQ(entries[1].path, "1");
    EXPECT_EQ(entries[2].path, "1.1");
    EXPECT_EQ(entries[3].path, "1.1.1");
    EXPECT_EQ(entries[3].depth, 3u);
    EXPECT_EQ(entries.back().nesting, 32u);

    // A single-part message has no attachments and is its own text.
    const KNMimeMessageView simple(message("Subject: hi\n\nHello\n"));
    EXPECT_TRUE(simple.attachments().empty());
    EXPECT_EQ(simple.mainText(), "Hello\n");
    EXPECT_EQ(KNMimeMessageView(message("Content-Type: image/png\n\nx\n")).mainText(), std::nullopt);
}

TEST(MessageView, OpensAttachedMessagesAsTheReaderReadThem)
{
    const KNCString text = "Content-Type: multipart/mixed; boundary=o\n\n--o\n\nhi\n--o\n"
                           "Content-Type: message/rfc822\n\nSubject: fwd\nContent-Type: multipart/mixed; boundary=i\n\n"
                           "--i\nContent-Type: application/pdf; name=a.pdf\n\n%PDF\n--i--\n--o--\n";
    const KNMimeReadResult read = KNMimeReader().read(text);
    KNCString walked;
    for (const KNMimeMessageView::Entry& e : KNMimeMessageView(read).walk())
        walked += "[" + e.path + " " + e.mediaType + "]";
    KNCString entities;
    for (const KNMimeReadResult::Entity& e : read.getEntities())
        entities += "[" + e.path + " " + KNMimeMessageView::mediaType(e.part) + "]";
    EXPECT_EQ(walked, "[ multipart/mixed][1 text/plain][2 message/rfc822][2.1 multipart/mixed][2.1.1 application/pdf]");
    EXPECT_EQ(walked, entities);
}

TEST(MessageView, DeepTreesWalkedWithoutRecursion)
{
    KNMimePart leaf;
    leaf.setBody("deep");
    KNMimePart current = leaf;
    for (int i = 0; i < 5000; ++i) {
        KNMimeMultipart outer(KNMimeMultipartType("mixed", "b" + std::to_string(i)));
        outer.insertPart(current);
        current = outer;
    }
    const KNMimeMessageView view(current);
    const std::vector<KNMimeMessageView::Entry> entries = view.walk();
    ASSERT_EQ(entries.size(), 5001u);
    EXPECT_EQ(entries.back().depth, 5000u);
    EXPECT_EQ(view.mainText(), std::nullopt); // deeper than the search goes
}

TEST(MailLayer, AnyInputGivesUtf8AndWritesReadBack)
{
    // Texts built from the pieces that steer the readers: encoded-word marks, RFC 2231 marks,
    // quotes, comments, angle brackets, separators, line breaks and 8-bit bytes.
    static const char* const pieces[] = {"=?", "?=", "?q?", "?B?", "utf-8", "iso-8859-1", "'", "%", "%C3", "*",
                                         "*0*", ";", "=", "\"", "\\", "(", ")", "<", ">", "@", ",", ":", " ",
                                         "\r\n ", "a", "\xC3", "\xBC", "\xFF", "_", "x.y", "[", "]", "Mon", "12",
                                         "Nov", "2026", "10:00", "+0100", "begin ", "\n"};
    std::mt19937 rng(822);
    std::uniform_int_distribution<std::size_t> pick(0, std::size(pieces) - 1);
    for (int round = 0; round < 3000; ++round) {
        KNCString text;
        for (int n = round % 30; n > 0; --n)
            text += pieces[pick(rng)];
        ASSERT_TRUE(KNMimeCharset::isValidUtf8(KNMimeHeaderText::decode(text))) << text;
        if (KNMimeCharset::isValidUtf8(text)) {
            ASSERT_EQ(KNMimeHeaderText::decode(KNMimeHeaderText::encode(text)), text);
        }
        const KNMimeExtendedParameters p = KNMimeExtendedParameters::fromHeaderValue(text);
        for (std::size_t i = 0; i < p.getCount(); ++i)
            ASSERT_TRUE(KNMimeCharset::isValidUtf8(p.get(p.getRaw(i).first).value_or("\xFF"))) << text;
        const KNMimeAddressList list = KNMimeAddressList::parse(text);
        for (const KNMimeAddress& a : list)
            ASSERT_TRUE(KNMimeCharset::isValidUtf8(a.getName() + a.getGroup())) << text;
        ASSERT_TRUE(KNMimeAddressList::parse(list.encode()) == list) << text << "\n" << list.encode();
        if (const auto date = KNMimeDate::parse(text)) {
            ASSERT_EQ(KNMimeDate::parse(date->asString()), date) << text;
        }
        (void)KNMimeBodyDecoder::decodeBase64(text);
        (void)KNMimeBodyDecoder::decodeQuotedPrintable(text);
        (void)KNMimeBodyDecoder::decodeUUEncode(text);
    }
}

} // namespace

TEST(BodyDecoder, DecodedSizeAgreesWithDecoding)
{
    // Random bodies of base64 characters, padding, line ends and stray bytes, and of
    // quoted-printable text, each measured as decode() measures it.
    std::mt19937 random(3);
    const char pieces[] = "ABCxyz019+/=\r\n \t!-";
    for (int round = 0; round < 2000; ++round) {
        KNCString body(random() % 40, 'A');
        for (char& c : body)
            c = random() % 16 == 0 ? static_cast<char>(random() & 0xff) : pieces[random() % (sizeof pieces - 1)];
        for (const char* encoding : {"base64", "quoted-printable", "7bit", "x-unknown", "B64"})
            ASSERT_EQ(KNMimeBodyDecoder::decodedSize(body, encoding), KNMimeBodyDecoder::decode(body, encoding).data.size())
                << encoding << " " << body;
    }
    // Long bodies that are mostly the alphabet, with the odd line end, blank, sign or 8-bit
    // byte at any place of an eight-byte word, and quoted-printable with few escapes.
    const char near[] = "@[`{*,-.:\x80\xff\r\n \t=";
    for (int round = 0; round < 2000; ++round) {
        KNCString body(random() % 300, 'A');
        for (char& c : body) {
            const unsigned pick = random() % 64;
            c = pick < 3 ? near[random() % (sizeof near - 1)]
                         : "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"[pick];
        }
        for (const char* encoding : {"base64", "quoted-printable"})
            ASSERT_EQ(KNMimeBodyDecoder::decodedSize(body, encoding), KNMimeBodyDecoder::decode(body, encoding).data.size())
                << encoding << " " << body;
    }
}
