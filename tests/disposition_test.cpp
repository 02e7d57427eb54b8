// Content dispositions: lenient reading into the shared body, printing, filename access.
#include <mime/KNMimeContentDisposition.h>
#include <mime/KNMimeError.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

KNCString invalidToken(const KNCString& text)
{
    return "[INVALID_TOKEN] The following is not a valid token:  \"" + text + "\"";
}

template <class E, class F>
KNCString thrownText(F action)
{
    try {
        action();
    } catch (const E& e) {
        return e.why();
    }
    return "nothing thrown";
}

KNMimeContentDisposition parsed(const KNCString& text)
{
    KNMimeContentDisposition disposition;
    disposition.fromString(text);
    return disposition;
}

TEST(KNMimeContentDispositionTest, ConstructionAndPrinting)
{
    EXPECT_EQ(KNMimeContentDisposition::Filename, "filename");
    EXPECT_EQ(thrownText<KNMimeError>([] { KNMimeContentDisposition().asString(); }), invalidToken(""));
    EXPECT_EQ(KNMimeContentDisposition("attachment", "").asString(), "attachment");
    EXPECT_EQ(KNMimeContentDisposition("attachment", "a b.txt").asString(), "attachment; filename=\"a b.txt\"");
    EXPECT_EQ(thrownText<KNMimeError>([] { KNMimeContentDisposition("at tach", "x").asString(); }),
              invalidToken("at tach"));
    KNMimeContentDisposition disposition("inline", "");
    disposition.insertParameter(KNMimeParameter("si:ze", "1"));
    EXPECT_EQ(thrownText<KNMimeError>([&] { disposition.asString(); }), invalidToken("si:ze"));
}

TEST(KNMimeContentDispositionTest, ReadingIsLenientAboutTheType)
{
    const KNMimeContentDisposition attachment = parsed("attachment (x); FileName=\"a b.txt\"");
    EXPECT_EQ(attachment.getType(), "attachment");
    ASSERT_EQ(attachment.getParameterCount(), 1u);
    EXPECT_EQ(attachment.getParameter(0).getName(), "FileName");
    EXPECT_EQ(attachment.getFilename(), "a b.txt");
    EXPECT_EQ(parsed("").getType(), "");
    EXPECT_EQ(parsed(";").getType(), "");
    EXPECT_EQ(parsed(";").getParameterCount(), 0u);
    EXPECT_EQ(parsed("inline;").getParameterCount(), 0u);
    EXPECT_EQ(parsed("inline;").asString(), "inline");
    EXPECT_EQ(parsed("\"in;line\"; a=1").getType(), "in;line");
    EXPECT_EQ(parsed("(a;b) inline (c) ; a=1").asString(), "inline; a=\"1\"");
    // A bare type replaces the parameters too.
    KNMimeContentDisposition disposition = parsed("attachment; filename=x");
    disposition.fromString("INLINE");
    EXPECT_EQ(disposition.getType(), "INLINE");
    EXPECT_EQ(disposition.getParameterCount(), 0u);
}

TEST(KNMimeContentDispositionTest, FailedParseLeavesTheBodyUnchanged)
{
    KNMimeContentDisposition disposition = parsed("attachment; filename=\"x\"");
    const KNMimeContentDisposition sharing = disposition;
    for (const KNCString& text : std::vector<KNCString>{"inline;;a=1", "inline; a", ";;", KNCString(100000, ';')}) {
        EXPECT_EQ(thrownText<KNMimeParseError>([&] { disposition.fromString(text); }),
                  "[MISSING_PARAMETER_SEPARATOR] Unable to separate parameter name from value");
        EXPECT_EQ(sharing.asString(), "attachment; filename=\"x\"");
    }
}

TEST(KNMimeContentDispositionTest, ParsingChangesTheSharedBodyInPlace)
{
    KNMimeContentDisposition a = parsed("attachment; filename=x");
    const KNMimeContentDisposition b = a;
    a.fromString("inline");
    EXPECT_TRUE(a.sharesBodyWith(b));
    EXPECT_EQ(b.getType(), "inline");
    EXPECT_EQ(b.getParameterCount(), 0u);
}

TEST(KNMimeContentDispositionTest, SetFilenameMovesItToTheEnd)
{
    KNMimeContentDisposition disposition = parsed("attachment; filename=\"a\"; size=\"3\"");
    disposition.setFilename("x");
    EXPECT_EQ(disposition.asString(), "attachment; size=\"3\"; filename=\"x\"");
    disposition.setFilename("");
    EXPECT_EQ(disposition.getFilename(), "");
    EXPECT_EQ(disposition.asString(), "attachment; size=\"3\"");
    disposition.setType("inline");
    EXPECT_EQ(disposition.asString(), "inline; size=\"3\"");
}

TEST(KNMimeContentDispositionTest, EqualityIgnoresCaseOfTypeAndOrderOfParameters)
{
    EXPECT_EQ(parsed("INLINE"), parsed("inline"));
    EXPECT_EQ(parsed("inline; a=1; B=2"), parsed("Inline; b=2; a=1"));
    EXPECT_NE(parsed("inline; a=1"), parsed("inline; a=2"));
    EXPECT_NE(parsed("inline"), parsed("attachment"));
}

TEST(KNMimeContentDispositionTest, PrintedFormsReadBack)
{
    KNMimeContentDisposition disposition("attachment", "r\xC3\xA9sum\xC3\xA9 \"final\"; v2\\.txt");
    disposition.setParameterValue("size", "12");
    const KNMimeContentDisposition read = parsed(disposition.asString());
    EXPECT_EQ(read, disposition);
    EXPECT_EQ(read.getFilename(), disposition.getFilename());
    EXPECT_EQ(read.asString(), disposition.asString());
}

} // namespace
