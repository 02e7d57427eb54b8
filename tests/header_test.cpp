// The general header: parsing a header line, printing it, comparing and copying headers.
#include <foundation/KNTHRInvalidPointer.h>
#include <mime/KNMimeContentTypeHeaderImp.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeHeader.h>
#include <mime/KNMimeHeaderImp.h>
#include <mime/KNMimeStructuredHeaderImp.h>
#include <mime/KNMimeUnstructuredHeaderImp.h>

#include <gtest/gtest.h>

#include <random>

namespace {

KNMimeHeader parsed(const KNCString& line)
{
    KNMimeHeader header;
    header.fromString(line);
    return header;
}

KNCString valueOf(const KNMimeHeader& header)
{
    return header.body()->getValueAsString();
}

template <class Body>
bool hasBody(const KNMimeHeader& header)
{
    return dynamic_cast<Body*>(header.body()) != nullptr;
}

// The text of the error `action` throws as E; fails the test if it throws nothing.
template <class E, class F>
KNCString errorText(F action)
{
    try {
        action();
    } catch (const E& e) {
        return e.why();
    }
    ADD_FAILURE() << "nothing thrown";
    return KNCString();
}

// A body whose value can never be printed; it keeps the default value comparison.
class UnprintableBody : public KNMimeHeaderImp {
public:
    KNCString getValueAsString() const override { throw KNMimeError(KNCString("unprintable")); }
    void setValueFromString(const KNCString&) override {}
    UnprintableBody* copy() const override { return new UnprintableBody(*this); }
};

const KNCString missingSeparator = "[MISSING_HEADER_SEPARATOR] Unable to separate label from value";

KNCString invalidLabel(const KNCString& label)
{
    return "[INVALID_VERSION] The following is not a valid version:  \"" + label + "\"";
}

TEST(KNMimeHeaderTest, ParsesLabelAndValueAndPrintsThemBack)
{
    const KNMimeHeader subject = parsed("Subject: hello");
    EXPECT_EQ(subject.getLabel(), "Subject");
    EXPECT_TRUE(hasBody<KNMimeUnstructuredHeaderImp>(subject));
    EXPECT_EQ(valueOf(subject), "hello");
    EXPECT_EQ(subject.asString(), "Subject: hello");

    EXPECT_EQ(parsed(" Subject :hello").getLabel(), "Subject");
    const KNMimeHeader spaced = parsed("Subject:   =?utf-8?Q?a?=  \"q:x\"  (c) b \t ");
    EXPECT_EQ(valueOf(spaced), "=?utf-8?Q?a?=  \"q:x\"  (c) b");

    const KNMimeHeader empty = parsed("Subject:");
    EXPECT_EQ(valueOf(empty), "");
    EXPECT_EQ(empty.asString(), "Subject: ");
    // An empty value keeps the body's default rather than failing to parse.
    const KNMimeHeader contentType = parsed("Content-Type:   ");
    EXPECT_TRUE(hasBody<KNMimeContentTypeHeaderImp>(contentType));
    EXPECT_EQ(contentType.asString(), "Content-Type: text/plain");

    const KNMimeHeader structured = parsed("Content-ID: (comment) <a@b>  ");
    EXPECT_TRUE(hasBody<KNMimeStructuredHeaderImp>(structured));
    EXPECT_EQ(valueOf(structured), "<a@b>");

    const KNMimeHeader lower("content-type");
    EXPECT_TRUE(hasBody<KNMimeContentTypeHeaderImp>(lower));
    EXPECT_EQ(lower.asString(), "content-type: text/plain");

    const KNMimeHeader fresh;
    EXPECT_EQ(fresh.getLabel(), "");
    EXPECT_TRUE(hasBody<KNMimeUnstructuredHeaderImp>(fresh));
    EXPECT_EQ(valueOf(fresh), "");
}

TEST(KNMimeHeaderTest, FindsTheSeparatorOutsideQuotesAndComments)
{
    EXPECT_EQ(errorText<KNMimeParseError>([] { parsed("Subject hello"); }), missingSeparator);
    EXPECT_EQ(errorText<KNMimeParseError>([] { parsed("\"Subject: hello\""); }), missingSeparator);
    EXPECT_EQ(errorText<KNMimeParseError>([] { parsed("X(a:b c"); }), missingSeparator);
    EXPECT_EQ(errorText<KNMimeParseError>([] { parsed(""); }), missingSeparator);

    const KNMimeHeader commented = parsed("X-A(a:b): v:w");
    EXPECT_EQ(commented.getLabel(), "X-A");
    EXPECT_EQ(valueOf(commented), "v:w");
    EXPECT_EQ(parsed("\"X:Y\": v").getLabel(), "X:Y");
}

TEST(KNMimeHeaderTest, RefusesToPrintBadLabels)
{
    const KNMimeHeader noLabel = parsed(": value");
    EXPECT_EQ(noLabel.getLabel(), "");
    EXPECT_EQ(errorText<KNMimeError>([&] { noLabel.asString(); }), invalidLabel(""));

    const KNMimeHeader control = parsed("X\x01Y: v");
    EXPECT_EQ(errorText<KNMimeError>([&] { control.asString(); }), invalidLabel("X\x01Y"));

    KNMimeHeader header("X-Test");
    for (const char* bad : {"a b", "a:b", "a\tb", "a\x7f", "\x1f"}) {
        header.body()->setLabel(bad);
        EXPECT_EQ(errorText<KNMimeError>([&] { header.asString(); }), invalidLabel(bad)) << bad;
    }
    // The label is checked before the value, which here could not be printed either.
    KNMimeHeader encoding("Content-Transfer-Encoding");
    encoding.body()->setLabel("bad label");
    EXPECT_EQ(errorText<KNMimeError>([&] { encoding.asString(); }), invalidLabel("bad label"));

    header.body()->setLabel("X-\xc3\xa9t\xe9");
    EXPECT_EQ(header.asString(), "X-\xc3\xa9t\xe9: ");
    // Only the text before an embedded NUL is examined.
    const KNCString withNul("X\0 :", 4);
    header.body()->setLabel(withNul);
    EXPECT_EQ(header.asString(), withNul + ": ");
}

TEST(KNMimeHeaderTest, KeepsNulBytesAndEightBitTextWhileParsing)
{
    const char raw[] = "X-N\0l: a\0b\xff";
    const KNCString line(raw, sizeof raw - 1);
    const KNMimeHeader header = parsed(line);
    EXPECT_EQ(header.getLabel(), KNCString("X-N\0l", 5));
    EXPECT_EQ(valueOf(header), KNCString("a\0b\xff", 4));
    EXPECT_EQ(header.asString(), line);
    EXPECT_EQ(parsed("\xe4\xf6: x").getLabel(), "\xe4\xf6");
}

TEST(KNMimeHeaderTest, FoldsLongValuesAndUnfoldsThemAgain)
{
    std::mt19937 random(20240607);
    int foldedCount = 0;
    const KNCString letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789=?\"()<>@,;:/.-_";
    for (int round = 0; round < 300; ++round) {
        KNCString value;
        const int words = 1 + static_cast<int>(random() % 60);
        for (int w = 0; w < words; ++w) {
            if (w > 0)
                value += (random() % 5 == 0) ? "\t" : " ";
            const int length = 1 + static_cast<int>(random() % (round % 10 == 0 ? 120 : 12));
            for (int i = 0; i < length; ++i)
                value += letters[random() % letters.size()];
        }
        KNMimeHeader header("X-Long");
        header.body()->setValueFromString(value);
        const KNCString printed = header.asString();
        foldedCount += printed.find("\r\n") != KNCString::npos;
        std::size_t start = 0;
        for (std::size_t end; (end = printed.find("\r\n", start)) != KNCString::npos; start = end + 2) {
            const bool breaksAtBlank = printed[end + 2] == ' ' || printed[end + 2] == '\t';
            ASSERT_TRUE(breaksAtBlank) << printed;
        }
        const KNMimeHeader reread = parsed(printed);
        ASSERT_EQ(valueOf(reread), value) << printed;
        ASSERT_TRUE(reread == header);
    }
    EXPECT_GT(foldedCount, 100);
    const KNMimeHeader folded = parsed("Subject: one\r\n two\r\n\tthree");
    EXPECT_EQ(valueOf(folded), "one two\tthree");
}

TEST(KNMimeHeaderTest, ComparesLabelsIgnoringCaseAndValuesExactly)
{
    EXPECT_TRUE(parsed("SUBJECT: Hi") == parsed("subject: Hi"));
    EXPECT_TRUE(parsed("Subject: Hi") != parsed("Subject: hi"));
    EXPECT_TRUE(parsed("Subject: Hi") != parsed("Comments: Hi"));
    // A value that cannot be printed is equal to nothing, not even to itself.
    const KNMimeHeader unprintable(new UnprintableBody);
    unprintable.body()->setLabel("X-Bad");
    EXPECT_FALSE(unprintable == unprintable);
    EXPECT_FALSE(parsed("X-Bad: v") == unprintable);
}

TEST(KNMimeHeaderTest, SharesBodiesOnAssignmentAndCopiesOnCopy)
{
    KNMimeHeader a = parsed("Subject: first");
    KNMimeHeader b = a;
    b.body()->setValueFromString("changed");
    EXPECT_EQ(valueOf(a), "changed");

    const KNMimeHeader deep = a.copy();
    EXPECT_FALSE(deep.sharesBodyWith(a));
    EXPECT_TRUE(deep == a);
    deep.body()->setLabel("Comments");
    EXPECT_EQ(a.getLabel(), "Subject");

    // Parsing rebinds only the handle that parses.
    b.fromString("X-Other: 1");
    EXPECT_FALSE(b.sharesBodyWith(a));
    EXPECT_EQ(a.asString(), "Subject: changed");
    EXPECT_EQ(b.asString(), "X-Other: 1");
}

TEST(KNMimeHeaderTest, FailedParseLeavesTheHandleAsItWas)
{
    KNMimeHeader header = parsed("Subject: keep");
    const KNMimeHeader sharing = header;
    EXPECT_EQ(errorText<KNMimeParseError>([&] { header.fromString("no separator"); }), missingSeparator);
    EXPECT_EQ(errorText<KNMimeParseError>([&] { header.fromString("MIME-Version: 2"); }),
              "[INVALID_VERSION] The following is not a valid version:  \"2\"");
    EXPECT_EQ(errorText<KNMimeParseError>([&] { header.fromString("Content-Type: text"); }),
              "[MISSING_TYPE_SEPARATOR] Unable to separate media type from subtype");
    EXPECT_TRUE(header.sharesBodyWith(sharing));
    EXPECT_EQ(header.asString(), "Subject: keep");
}

TEST(KNMimeHeaderTest, EmptyHandleThrowsInvalidPointer)
{
    KNMimeHeader empty(static_cast<KNMimeHeaderImp*>(nullptr));
    const KNMimeHeader other;
    EXPECT_EQ(errorText<KNTHRInvalidPointer>([&] { empty.getLabel(); }), "Invalid pointer");
    EXPECT_EQ(errorText<KNTHRInvalidPointer>([&] { empty.asString(); }), "Invalid pointer");
    EXPECT_EQ(errorText<KNTHRInvalidPointer>([&] { empty.copy(); }), "Invalid pointer");
    EXPECT_EQ(errorText<KNTHRInvalidPointer>([&] { empty.fromString("A: b"); }), "Invalid pointer");
    EXPECT_EQ(errorText<KNTHRInvalidPointer>([&] { (void)(empty == other); }), "Invalid pointer");
    EXPECT_TRUE(empty.isEmpty());
}

} // namespace
