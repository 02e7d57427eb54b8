// Content types and their text, multipart and multipart/related refinements.
#include <mime/KNMimeContentType.h>
#include <mime/KNMimeContentTypeImp.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeMultipartRelatedType.h>
#include <mime/KNMimeMultipartType.h>
#include <mime/KNMimeTextType.h>

#include <gtest/gtest.h>
#include <tests/TestSupport.h>

#include <utility>

namespace {

KNCString invalidConversion(const KNCString& type)
{
    return "[INVALID_TYPE_CONVERSION] Unable to convert from \"" + type + "\"";
}

constexpr auto parsed = &parsedAs<KNMimeContentType>;

TEST(KNMimeContentTypeTest, ReadsWithoutCheckingAndPrintsTokensOnly)
{
    struct Case {
        KNCString text, mediaType, subType, printed;
    };
    const Case cases[] = {
        {" Text / HTML (c) ; charset=\"utf-8\"", "Text", "HTML", "Text/HTML; charset=\"utf-8\""},
        {"text/plain;", "text", "plain", "text/plain"},
        {"multipart/mixed; boundary=\"a;b\"", "multipart", "mixed", "multipart/mixed; boundary=\"a;b\""},
        {"image/\xC3\xA9; a=\"\xFF\"", "image", "\xC3\xA9", "image/\xC3\xA9; a=\"\xFF\""},
        // The first unquoted '/' separates, even after a ';'.
        {"text; name=a/b", "text; name=a", "b", invalidToken("text; name=a")},
        {"\"a/b\"(c/d)/e", "a/b", "e", invalidToken("a/b")},
        {"text/", "text", "", invalidToken("")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const KNMimeContentType type = parsed(c.text);
        EXPECT_EQ(type.getMediaType(), c.mediaType);
        EXPECT_EQ(type.getSubType(), c.subType);
        EXPECT_EQ(outcome([&] { return type.asString(); }), c.printed);
    }
    EXPECT_EQ(outcome([] { return KNMimeContentType("a b", "c d", {}).asString(); }), invalidToken("a b"));
    EXPECT_EQ(outcome([] { return KNMimeContentType("a", "c d", {}).asString(); }), invalidToken("c d"));
    EXPECT_EQ(outcome([] { return parsed("a/b; bad\\name=1").asString(); }), invalidToken("bad\\name"));
}

TEST(KNMimeContentTypeTest, FailedParseLeavesTheHandleAndItsBody)
{
    const KNCString missingType = "[MISSING_TYPE_SEPARATOR] Unable to separate media type from subtype";
    const KNCString missingParameter = "[MISSING_PARAMETER_SEPARATOR] Unable to separate parameter name from value";
    KNMimeContentType type = parsed("text/html; a=1");
    KNMimeTextType text("html", "utf-8");
    KNMimeMultipartType multipart("mixed", "b");
    KNMimeMultipartRelatedType related;
    struct Case {
        KNMimeContentType* target;
        KNCString text, error;
    };
    const Case cases[] = {
        {&type, "text", missingType}, {&type, "\"text/plain", missingType}, {&type, "text(/)plain", missingType},
        {&type, KNCString(300000, '"'), missingType}, {&type, "text/plain;;a=1", missingParameter},
        // The specialised types refuse through their own check.
        {&text, "image/png; a=1", invalidConversion("image/png")},
        {&multipart, "text/plain", invalidConversion("text/plain")},
        {&related, "multipart/mixed", invalidConversion("multipart/mixed")},
    };
    for (const Case& c : cases) {
        const KNMimeContentType sharing = *c.target;
        const KNCString before = sharing.asString();
        EXPECT_EQ(outcome([&] { c.target->fromString(c.text); return KNCString(); }), c.error);
        EXPECT_TRUE(c.target->sharesBodyWith(sharing));
        EXPECT_EQ(c.target->asString(), before);
    }
    EXPECT_THROW(type.fromString("text"), KNMimeParseError);

    // Success rebinds only this handle; the old body keeps its value.
    const KNMimeContentType old = type;
    type.fromString("image/png");
    EXPECT_FALSE(type.sharesBodyWith(old));
    EXPECT_EQ(old.asString(), "text/html; a=\"1\"");
}

TEST(KNMimeContentTypeTest, EqualityIgnoresCaseOfTypesAndOrderOfParameters)
{
    // A ';' right after the slash ends an empty subtype.
    const KNMimeContentType empty = parsedAs<KNMimeContentType>("image/;b=1");
    EXPECT_EQ(empty.getSubType() + "|" + empty.getParameterValue("b"), "|1");
    EXPECT_TRUE(*parsedAs<KNMimeContentType>("a/b").body() != *parsedAs<KNMimeContentType>("a/c").body());
    EXPECT_FALSE(*parsedAs<KNMimeContentType>("A/b").body() != *parsedAs<KNMimeContentType>("a/B").body());
    EXPECT_EQ(parsed("TEXT/Plain"), parsed("text/plain"));
    EXPECT_EQ(parsed("a/b; x=1; y=2"), parsed("a/b; Y=2; x=\"1\""));
    EXPECT_NE(parsed("a/b; x=1"), parsed("a/b; x=2"));
    EXPECT_NE(parsed("a/b"), parsed("a/c"));
}

TEST(KNMimeSpecialisedTypeTest, ConstructorsAndNamedParameters)
{
    KNMimeTextType text("plain", "a");
    text.insertParameter(KNMimeParameter("format", "flowed"));
    text.setCharset("b");
    EXPECT_EQ(text.asString(), "text/plain; format=\"flowed\"; charset=\"b\"");
    text.setCharset("");
    EXPECT_EQ(text.asString(), "text/plain; format=\"flowed\"");

    // Built multipart types always get a boundary; this library's are unique per process.
    const KNMimeMultipartType first, second;
    EXPECT_EQ(first.asString(), "multipart/mixed; boundary=\"" + first.getBoundary() + "\"");
    EXPECT_NE(first.getBoundary(), second.getBoundary());
    EXPECT_FALSE(KNMimeMultipartRelatedType("", "", "", "").getBoundary().empty());
    // Converting to a related type draws (and drops) one boundary number as it starts.
    const KNMimeMultipartType before;
    const KNMimeMultipartRelatedType related{KNMimeMultipartType("related", "r")};
    const KNMimeMultipartType after;
    const auto number = [](const KNCString& b) { return std::stoll(b.substr(13)); };
    EXPECT_EQ(number(after.getBoundary()) - number(before.getBoundary()), 2); // one drawn in between
    KNMimeMultipartType multipart("alternative", "abc");
    EXPECT_EQ(multipart.asString(), "multipart/alternative; boundary=\"abc\"");
    multipart.setBoundary("");
    EXPECT_EQ(multipart.asString(), "multipart/alternative");
    EXPECT_EQ(KNMimeMultipartRelatedType("text/html", "<start>", "info", "b").asString(),
              "multipart/related; boundary=\"b\"; type=\"text/html\"; start=\"<start>\"; start_info=\"info\"");
}

TEST(KNMimeSpecialisedTypeTest, ConversionsCheckTheMediaTypeAndShareTheBody)
{
    const KNMimeContentType text = parsed("TEXT/x-foo");
    KNMimeTextType converted(text);
    EXPECT_TRUE(converted.sharesBodyWith(text));
    converted.setCharset("utf-8");
    EXPECT_EQ(text.getParameterValue("charset"), "utf-8");

    EXPECT_EQ(outcome([] { return KNMimeMultipartType(parsed("text/plain")).asString(); }),
              invalidConversion("text/plain"));
    EXPECT_EQ(outcome([] { return KNMimeTextType(parsed("image/png")).asString(); }),
              invalidConversion("image/png"));
    EXPECT_EQ(outcome([] { return KNMimeMultipartRelatedType(parsed("multipart/mixed")).asString(); }),
              invalidConversion("multipart/mixed"));

    // Neither converting nor parsing makes up a boundary.
    const KNMimeContentType general = parsed("Multipart/RELATED; type=x");
    KNMimeMultipartRelatedType related(general);
    KNMimeMultipartType multipart(related);
    EXPECT_TRUE(multipart.sharesBodyWith(general));
    EXPECT_EQ(multipart.getBoundary(), "");
    related.setStart("<s>");
    multipart.setBoundary("y");
    EXPECT_EQ(general.asString(), "Multipart/RELATED; type=\"x\"; start=\"<s>\"; boundary=\"y\"");
    multipart.fromString("multipart/mixed");
    EXPECT_EQ(multipart.asString(), "multipart/mixed");
}

} // namespace
