// Building messages: structure, encodings, header text and file names that read back exactly.

#include <mail/KNMimeMail.h>

#include <gtest/gtest.h>

#include <random>

namespace {

KNMimeAddressList addresses(std::string_view text)
{
    return KNMimeAddressList::parse(text);
}

// The longest line of `text`, and of its header block alone.
std::pair<std::size_t, std::size_t> longestLines(const KNCString& text)
{
    std::size_t longest = 0;
    std::size_t header = 0;
    bool inHeaders = true;
    for (std::size_t p = 0; p < text.size();) {
        std::size_t end = text.find("\r\n", p);
        if (end == KNCString::npos)
            end = text.size();
        longest = std::max(longest, end - p);
        if (inHeaders)
            header = std::max(header, end - p);
        inHeaders = inHeaders && end != p;
        p = end + 2;
    }
    return {longest, header};
}

KNCString randomBytes(std::mt19937& random, std::size_t size)
{
    KNCString data(size, '\0');
    for (char& c : data)
        c = static_cast<char>(random() & 0xff);
    return data;
}

const KNCString longUtf8Name = "\xC3\x9C" "bersicht des zweiten Quartals mit sehr langem Namen f\xC3\xBCr alle Abteilungen.pdf";

} // namespace

TEST(MessageBuilder, BuildsWhatTheReaderReadsBackWithoutDefects)
{
    std::mt19937 random(11);
    const KNCString pdf = randomBytes(random, 3000);
    KNMimeMessageBuilder builder;
    builder.setFrom(addresses("Jos\xC3\xA9 Garc\xC3\xAD" "a <jose@example.org>"))
        .setTo(addresses("Team <team@example.org>, \"Doe, Jane\" <jane@example.net>"))
        .setCc(addresses("cc@example.org"))
        .setSubject("\xC3\x9C" "bersicht Q2 \xE2\x80\x93 bitte lesen, mit einer Betreffzeile, die l\xC3\xA4nger ist als eine Zeile")
        .setDate(*KNMimeDate::parse("Mon, 23 Nov 2026 13:05:09 +0100"))
        .setText("Hallo,\nanbei die \xC3\x9C" "bersicht.\n")
        .setHtml("<p>Hallo, <img src=\"cid:logo\"></p>\n");
    const KNCString logo = builder.addInline("logo.png", "image/png", randomBytes(random, 500));
    builder.addAttachment(longUtf8Name, "application/pdf", pdf).addAttachment("notes.txt", "text/plain", "one\r\ntwo\r\n");
    const KNCString text = builder.toString();

    const KNMimeReadResult read = KNMimeReader().read(text);
    EXPECT_TRUE(read.getDefects().empty());
    KNCString tree;
    for (const KNMimeMessageView::Entry& e : KNMimeMessageView(read).walk())
        tree += "[" + e.path + " " + e.mediaType + "]";
    EXPECT_EQ(tree, "[ multipart/mixed][1 multipart/alternative][1.1 text/plain][1.2 multipart/related]"
                    "[1.2.1 text/html][1.2.2 image/png][2 application/pdf][3 text/plain]");
    const KNMimePart& message = read.getMessage();
    EXPECT_EQ(KNMimeMessageView::headerText(message, "Subject"),
              "\xC3\x9C" "bersicht Q2 \xE2\x80\x93 bitte lesen, mit einer Betreffzeile, die l\xC3\xA4nger ist als eine Zeile");
    EXPECT_EQ(KNMimeAddressList::fromHeader(message, "From"), addresses("Jos\xC3\xA9 Garc\xC3\xAD" "a <jose@example.org>"));
    EXPECT_EQ(KNMimeAddressList::fromHeader(message, "To")->size(), 2U);
    EXPECT_EQ(KNMimeMessageView::headerText(message, "Date"), "Mon, 23 Nov 2026 13:05:09 +0100");
    EXPECT_EQ(KNMimeMessageView::header(message, "MIME-Version"), "1.0");
    EXPECT_NE(KNMimeMessageView::header(message, "Message-ID")->find("@example.org>"), KNCString::npos);

    const KNMimeMessageView view(message);
    EXPECT_EQ(view.mainText(), "Hallo,\nanbei die \xC3\x9C" "bersicht.\n");
    const std::vector<KNMimeMessageView::Attachment> files = view.attachments();
    ASSERT_EQ(files.size(), 3U);
    EXPECT_EQ(files[0].filename, "logo.png");
    EXPECT_TRUE(files[0].isInline);
    EXPECT_EQ(KNMimeMessageView::header(files[0].part, "Content-ID"), "<" + logo + ">");
    EXPECT_EQ(files[1].filename, longUtf8Name);
    EXPECT_EQ(KNMimeBodyDecoder::decode(files[1].part).data, pdf);
    EXPECT_EQ(KNMimeMessageView::header(files[1].part, "Content-Transfer-Encoding"), "base64");
    EXPECT_EQ(KNMimeBodyDecoder::decode(files[2].part).data, "one\r\ntwo\r\n");
    EXPECT_EQ(KNMimeMessageView::header(files[2].part, "Content-Transfer-Encoding"), "7bit");

    const auto [longest, header] = longestLines(text);
    EXPECT_LE(header, 78U);
    EXPECT_LE(longest, 998U);
    EXPECT_TRUE(builder.build() == message); // the strict parser reads it too
}

TEST(MessageBuilder, ChoosesTransferEncodingsByContent)
{
    const auto encodingOf = [](const KNCString& text) {
        const KNMimePart message = KNMimeMessageBuilder().setFrom(addresses("a@example.org")).setText(text).build();
        return *KNMimeMessageView::header(message, "Content-Transfer-Encoding") + " " +
               KNMimeExtendedParameters::fromHeaderValue(*KNMimeMessageView::header(message, "Content-Type")).get("charset").value_or("");
    };
    EXPECT_EQ(encodingOf("short ascii\nlines\n"), "7bit us-ascii");
    EXPECT_EQ(encodingOf("caf\xC3\xA9\n"), "quoted-printable utf-8");
    EXPECT_EQ(encodingOf(KNCString(79, 'x')), "quoted-printable utf-8");
    EXPECT_EQ(encodingOf(KNCString(78, 'x')), "7bit us-ascii");
    // Files: bytes that travel as they are only when they are short ASCII lines ending CRLF.
    KNMimeMessageBuilder builder;
    builder.setText("x").addAttachment("a", "text/plain", "no line end").addAttachment("b", "text/plain", "ok\r\n");
    const KNMimeReadResult read = KNMimeReader().read(builder.toString());
    const auto files = KNMimeMessageView(read).attachments();
    ASSERT_EQ(files.size(), 2U);
    EXPECT_EQ(KNMimeMessageView::header(files[0].part, "Content-Transfer-Encoding"), "base64");
    EXPECT_EQ(KNMimeMessageView::header(files[1].part, "Content-Transfer-Encoding"), "7bit");
}

TEST(MessageBuilder, RandomNamesSubjectsAndFilesReadBackEqual)
{
    std::mt19937 random(5);
    const char* const pieces[] = {"a", "Z", " ", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "=?", "\"", ";", "%", "'", "\\"};
    for (int round = 0; round < 200; ++round) {
        KNCString name;
        KNCString subject;
        for (int i = 0, n = 1 + random() % 40; i < n; ++i) {
            name += pieces[random() % 12];
            subject += pieces[random() % 12];
        }
        const KNCString data = randomBytes(random, random() % 200);
        KNMimeMessageBuilder builder;
        builder.setFrom(addresses("a@example.org")).setSubject(subject).setText("t").addAttachment(name, "application/octet-stream", data);
        const KNCString text = builder.toString();
        const KNMimeReadResult read = KNMimeReader().read(text);
        ASSERT_TRUE(read.getDefects().empty()) << text;
        const auto files = KNMimeMessageView(read).attachments();
        ASSERT_EQ(files.size(), 1U) << text;
        EXPECT_EQ(files[0].filename, name) << text;
        EXPECT_EQ(KNMimeBodyDecoder::decode(files[0].part).data, data);
        // Blanks around a header value are not part of it.
        const std::size_t first = subject.find_first_not_of(' ');
        const KNCString trimmed = first == KNCString::npos ? "" : subject.substr(first, subject.find_last_not_of(' ') + 1 - first);
        EXPECT_EQ(KNMimeMessageView::headerText(read.getMessage(), "Subject").value_or(""), trimmed) << text;
        EXPECT_LE(longestLines(text).second, 78U) << text;
    }
}
