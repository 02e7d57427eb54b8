// Content dispositions: lenient reading into the shared body, printing, filename access.
#include <mime/KNMimeContentDisposition.h>
#include <mime/KNMimeContentDispositionImp.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeParameter.h>

#include <gtest/gtest.h>
#include <tests/TestSupport.h>

#include <utility>

namespace {

constexpr auto parsed = &parsedAs<KNMimeContentDisposition>;

TEST(KNMimeContentDispositionTest, ReadsLenientlyPrintsStrictlyAndSetFilenameAppends)
{
    const std::pair<KNCString, KNCString> cases[] = {
        {"attachment (x); FileName=\"a b.txt\"", "attachment; FileName=\"a b.txt\""},
        {"(a;b) inline (c) ; a=1", "inline; a=\"1\""},
        {"inline;", "inline"},
        {"", invalidToken("")},
        {";", invalidToken("")},
        {"\"in;line\"; a=1", invalidToken("in;line")},
        {"at tach; a=1", invalidToken("at tach")},
        {"inline; si:ze=1", invalidToken("si:ze")},
    };
    for (const auto& c : cases)
        EXPECT_EQ(outcome([&] { return parsed(c.first).asString(); }), c.second) << c.first;
    EXPECT_EQ(parsed("attachment; FileName=\"a b.txt\"").getFilename(), "a b.txt");
    EXPECT_EQ(outcome([] { return KNMimeContentDisposition().asString(); }), invalidToken(""));
    EXPECT_EQ(KNMimeContentDisposition("attachment", "").asString(), "attachment");

    KNMimeContentDisposition disposition = parsed("attachment; filename=\"a\"; size=\"3\"");
    disposition.setFilename("x");
    EXPECT_EQ(disposition.asString(), "attachment; size=\"3\"; filename=\"x\"");
    disposition.setFilename("");
    EXPECT_EQ(disposition.asString(), "attachment; size=\"3\"");
    disposition.setType("inline");
    EXPECT_EQ(disposition.getType() + "|" + disposition.asString(), "inline|inline; size=\"3\"");
}

TEST(KNMimeContentDispositionTest, ParsingChangesTheSharedBodyOnlyOnSuccess)
{
    KNMimeContentDisposition disposition = parsed("attachment; filename=\"x\"");
    const KNMimeContentDisposition sharing = disposition;
    for (const KNCString& text : {KNCString("inline;;a=1"), KNCString("inline; a"), KNCString(100000, ';')}) {
        EXPECT_EQ(outcome([&] { disposition.fromString(text); return KNCString(); }),
                  "[MISSING_PARAMETER_SEPARATOR] Unable to separate parameter name from value");
        EXPECT_EQ(sharing.asString(), "attachment; filename=\"x\"");
    }
    EXPECT_THROW(disposition.fromString("a; b"), KNMimeParseError);
    // Unlike a content type, the body is changed in place; a bare type drops the parameters.
    disposition.fromString("INLINE");
    EXPECT_TRUE(disposition.sharesBodyWith(sharing));
    EXPECT_EQ(sharing.asString(), "INLINE");
}

TEST(KNMimeContentDispositionTest, EqualityIgnoresCaseAndOrderAndPrintedFormsReadBack)
{
    EXPECT_EQ(parsed("INLINE"), parsed("inline"));
    EXPECT_EQ(parsed("inline; a=1; B=2"), parsed("Inline; b=2; a=1"));
    EXPECT_NE(parsed("inline; a=1"), parsed("inline; a=2"));
    EXPECT_NE(parsed("inline"), parsed("attachment"));
    EXPECT_TRUE(*parsed("inline").body() != *parsed("attachment").body());
    EXPECT_FALSE(*parsed("INLINE").body() != *parsed("inline").body());
    EXPECT_TRUE(KNMimeParameter("a", "1") != KNMimeParameter("a", "2"));
    EXPECT_FALSE(KNMimeParameter("a", "1") != KNMimeParameter("a", "1"));
    const KNMimeContentDisposition written("attachment", "r\xC3\xA9sum\xC3\xA9 \"final\"; v2\\.txt");
    const KNMimeContentDisposition read = parsed(written.asString());
    EXPECT_EQ(read.getFilename(), written.getFilename());
    EXPECT_EQ(read.asString(), written.asString());
}

} // namespace
