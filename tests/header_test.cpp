// The general header: parsing a header line, printing it, comparing and copying headers.
#include <mime/KNMimeContentDispositionHeader.h>
#include <mime/KNMimeContentTypeHeader.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeHeader.h>
#include <mime/KNMimeHeaderImp.h>
#include <mime/KNMimePart.h>

#include <gtest/gtest.h>
#include <tests/TestSupport.h>

#include <random>
#include <typeinfo>

namespace {

using namespace std::string_literals;

constexpr auto parsed = &parsedAs<KNMimeHeader>;

const KNCString missingSeparator = "[MISSING_HEADER_SEPARATOR] Unable to separate label from value";

TEST(KNMimeHeaderTest, ParsesLabelAndValueAndPrintsThemBack)
{
    const std::pair<KNCString, KNCString> cases[] = { // the line, and how it prints
        {"Subject: hello", "Subject: hello"},
        {"Subject:", "Subject: "},
        {"Subject:   =?utf-8?Q?a?=  \"q:x\"  (c) b \t ", "Subject: =?utf-8?Q?a?=  \"q:x\"  (c) b"},
        {"Subject: one\r\n two\r\n\tthree", "Subject: one two\tthree"},
        // An empty value keeps the body's default rather than failing to parse.
        {"Content-Type:   ", "Content-Type: text/plain"},
        {"Content-ID: (comment) <a@b>  ", "Content-ID: <a@b>"},
        {"X-A(a:b): v:w", "X-A: v:w"},
        {"X-\xe9\0l: a\0b\xff"s, "X-\xe9\0l: a\0b\xff"s},
    };
    for (const auto& [line, printed] : cases)
        EXPECT_EQ(parsed(line).asString(), printed) << line;
    // The body follows the label ignoring case; the label keeps the caller's spelling.
    EXPECT_EQ(KNMimeHeader("content-type").asString(), "content-type: text/plain");
}

TEST(KNMimeHeaderTest, RefusesToPrintBadLabelsBeforeLookingAtTheValue)
{
    // This body's empty encoding could not be printed either, so the label must be checked first.
    KNMimeHeader header("Content-Transfer-Encoding");
    for (const KNCString bad : {"", "X\x01Y", "a b", "a:b", "a\tb", "a\x7f", "\x1f"}) {
        header.body()->setLabel(bad);
        expectError<KNMimeError>([&] { header.asString(); },
                                 "[INVALID_VERSION] The following is not a valid version:  \"" + bad + "\"");
    }
    // Only the text before an embedded NUL is examined.
    KNMimeHeader nul("X-Test");
    nul.body()->setLabel("X\0 :"s);
    EXPECT_EQ(nul.asString(), "X\0 :: "s);
}

TEST(KNMimeHeaderTest, FoldsLongValuesAndUnfoldsThemAgain)
{
    std::mt19937 random(20240607);
    const KNCString letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789=?\"()<>@,;:/.-_";
    int foldedCount = 0;
    for (int round = 0; round < 300; ++round) {
        KNCString value = "v";
        for (int n = static_cast<int>(random() % 600); n > 0; --n) {
            const bool blank = value.back() != ' ' && value.back() != '\t' && random() % (round % 10 ? 8 : 150) == 0;
            value += blank ? " \t"[random() % 2] : letters[random() % letters.size()];
        }
        value += 'v';
        const KNCString printed = parsed("X-Long: " + value).asString();
        foldedCount += printed.find("\r\n") != KNCString::npos;
        for (std::size_t end = printed.find("\r\n"); end != KNCString::npos; end = printed.find("\r\n", end + 2))
            ASSERT_TRUE(printed[end + 2] == ' ' || printed[end + 2] == '\t') << printed;
        ASSERT_EQ(parsed(printed).body()->getValueAsString(), value) << printed;
    }
    EXPECT_GT(foldedCount, 100);
}

TEST(KNMimeHeaderTest, SharesOnAssignmentCopiesOnCopyAndComparesLabelsIgnoringCase)
{
    KNMimeHeader a = parsed("Subject: first");
    KNMimeHeader b = a;
    b.body()->setValueFromString("changed");
    EXPECT_EQ(a.asString(), "Subject: changed");
    const KNMimeHeader deep = a.copy();
    deep.body()->setLabel("Comments");
    EXPECT_EQ(a.getLabel(), "Subject");
    // Parsing rebinds only the handle that parses.
    b.fromString("X-Other: 1");
    EXPECT_EQ(a.asString(), "Subject: changed");

    EXPECT_TRUE(parsed("SUBJECT: Hi") == parsed("subject: Hi"));
    EXPECT_TRUE(parsed("Subject: Hi") != parsed("Subject: hi"));
    EXPECT_TRUE(parsed("Subject: Hi") != parsed("Comments: Hi"));
    EXPECT_TRUE(*parsed("Subject: Hi").body() != *parsed("Subject: hi").body());
    EXPECT_FALSE(*parsed("SUBJECT: Hi").body() != *parsed("subject: Hi").body());
    // Bodies of different classes compare printed values; one that cannot be printed (an
    // empty encoding) equals nothing.
    const KNMimeHeader unprintable("Content-Transfer-Encoding");
    unprintable.body()->setLabel("Subject");
    EXPECT_FALSE(*parsed("Subject: x").body() == *unprintable.body());
}

TEST(KNMimeHeaderTest, FailedParseLeavesTheHandleOrRebindsItAsTheStepThatFailed)
{
    // No separator: the handle and its sharers stay as they were.
    const KNCString cases[] = {"Subject hello", "\"Subject: hello\"", "X(a:b c", ""};
    KNMimeHeader header = parsed("Subject: keep");
    const KNMimeHeader sharing = header;
    for (const KNCString& line : cases) {
        SCOPED_TRACE(line);
        expectError<KNMimeParseError>([&] { header.fromString(line); }, missingSeparator);
        EXPECT_TRUE(header.sharesBodyWith(sharing));
        EXPECT_EQ(header.asString(), "Subject: keep");
    }
    // A value the new body refuses: the handle already holds that body, its sharers do not.
    expectError<KNMimeParseError>([&] { header.fromString("Content-Type: text"); },
        "[MISSING_TYPE_SEPARATOR] Unable to separate media type from subtype");
    EXPECT_EQ(header.asString(), "Content-Type: text/plain");
    expectError<KNMimeParseError>([&] { header.fromString("MIME-Version: 2"); },
        "[INVALID_VERSION] The following is not a valid version:  \"2\"");
    EXPECT_EQ(header.asString(), "MIME-Version: 2.0"); // the major number read before failing stays
    EXPECT_EQ(sharing.asString(), "Subject: keep");
}

TEST(KNMimeHeaderTest, LineBreakInValueCannotInjectAHeaderLine)
{
    const auto invalidValue = [](const KNCString& value) {
        return "[INVALID_VALUE] The following is not a valid header value:  \"" + value + "\"";
    };
    KNMimeHeader subject("Subject");
    for (const KNCString bad : {"a\r\nBcc: evil@example.com", "a\nb", "a\rb", "a\r\n", "a\r\n\r\n b", "\r\n b\n",
                                "a\n\n b", "a\r  b", "x\r\n \nb"}) {
        subject.body()->setValueFromString(bad);
        expectError<KNMimeError>([&] { subject.asString(); }, invalidValue(bad));
    }
    // A fold (CR LF then a blank or a tab) is no line break of the value.
    subject.body()->setValueFromString("one\r\n two\r\n\tthree\r\n ");
    EXPECT_EQ(subject.asString(), "Subject: one\r\n two\r\n\tthree\r\n ");

    // A file name or parameter value set through the API, and a quoted pair of a backslash
    // and a CR read from a parameter, cannot print a bare line break either.
    KNMimeContentDispositionHeader attachment(KNMimeContentDisposition("attachment", "a.txt\r\nBcc: evil@example.com"));
    expectError<KNMimeError>([&] { attachment.asString(); },
        invalidValue("attachment; filename=\"a.txt\r\nBcc: evil@example.com\""));
    KNMimeContentTypeHeader type;
    type.getContentType().setParameterValue("name", "x\ny");
    expectError<KNMimeError>([&] { type.asString(); }, invalidValue("text/plain; name=\"x\ny\""));
    KNMimePart part;
    part.insertHeader(parsed("Content-Type: text/plain; name=\"a\\\rb\""));
    expectError<KNMimeError>([&] { part.asString(); }, invalidValue("text/plain; name=\"a\rb\""));
}

} // namespace
