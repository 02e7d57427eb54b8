// Content types and their text, multipart and multipart/related refinements.
#include <mime/KNMimeContentType.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeMultipartRelatedType.h>
#include <mime/KNMimeMultipartType.h>
#include <mime/KNMimeTextType.h>

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

KNCString invalidToken(const KNCString& text)
{
    return "[INVALID_TOKEN] The following is not a valid token:  \"" + text + "\"";
}

KNCString invalidConversion(const KNCString& type)
{
    return "[INVALID_TYPE_CONVERSION] Unable to convert from \"" + type + "\"";
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

KNMimeContentType parsed(const KNCString& text)
{
    KNMimeContentType type;
    type.fromString(text);
    return type;
}

TEST(KNMimeContentTypeTest, ReadsTypeSubtypeAndParametersWithoutFoldingCase)
{
    const KNMimeContentType type = parsed(" Text / HTML (c) ; charset=\"utf-8\"");
    EXPECT_EQ(type.getMediaType(), "Text");
    EXPECT_EQ(type.getSubType(), "HTML");
    EXPECT_EQ(type.getParameterValue("CHARSET"), "utf-8");
    EXPECT_EQ(type.asString(), "Text/HTML; charset=\"utf-8\"");
    EXPECT_EQ(parsed("text/plain;").getParameterCount(), 0u);
    EXPECT_EQ(parsed("text/plain;").asString(), "text/plain");
    const KNCString multipart = "multipart/mixed; boundary=\"a;b\"";
    EXPECT_EQ(parsed(multipart).getParameterValue("boundary"), "a;b");
    EXPECT_EQ(parsed(multipart).asString(), multipart);
    EXPECT_EQ(parsed("image/\xC3\xA9; a=\"\xFF\"").asString(), "image/\xC3\xA9; a=\"\xFF\"");
}

TEST(KNMimeContentTypeTest, TheFirstUnquotedSlashSeparatesEvenAfterASemicolon)
{
    const KNMimeContentType type = parsed("text; name=a/b");
    EXPECT_EQ(type.getMediaType(), "text; name=a");
    EXPECT_EQ(type.getSubType(), "b");
    EXPECT_EQ(thrownText<KNMimeError>([&] { type.asString(); }), invalidToken("text; name=a"));
    const KNMimeContentType quoted = parsed("\"a/b\"(c/d)/e");
    EXPECT_EQ(quoted.getMediaType(), "a/b");
    EXPECT_EQ(quoted.getSubType(), "e");
}

TEST(KNMimeContentTypeTest, FailedParseLeavesTheHandleAndItsBody)
{
    KNMimeContentType type = parsed("text/html; a=1");
    const KNMimeContentType sharing = type;
    const std::vector<std::pair<KNCString, KNCString>> cases = {
        {"text", "[MISSING_TYPE_SEPARATOR] Unable to separate media type from subtype"},
        {"", "[MISSING_TYPE_SEPARATOR] Unable to separate media type from subtype"},
        {"\"text/plain", "[MISSING_TYPE_SEPARATOR] Unable to separate media type from subtype"},
        {"text(/)plain", "[MISSING_TYPE_SEPARATOR] Unable to separate media type from subtype"},
        {KNCString(300000, '"'), "[MISSING_TYPE_SEPARATOR] Unable to separate media type from subtype"},
        {"text/plain;;a=1", "[MISSING_PARAMETER_SEPARATOR] Unable to separate parameter name from value"},
        {"text/plain; a", "[MISSING_PARAMETER_SEPARATOR] Unable to separate parameter name from value"},
    };
    for (const auto& entry : cases) {
        const KNCString& text = entry.first;
        EXPECT_EQ(thrownText<KNMimeParseError>([&] { type.fromString(text); }), entry.second);
        EXPECT_TRUE(type.sharesBodyWith(sharing));
        EXPECT_EQ(type.asString(), "text/html; a=\"1\"");
    }
}

TEST(KNMimeContentTypeTest, ParsingRebindsOnlyThisHandle)
{
    KNMimeContentType a = parsed("text/plain; charset=\"us-ascii\"");
    const KNMimeContentType b = a;
    a.fromString("image/png");
    EXPECT_FALSE(a.sharesBodyWith(b));
    EXPECT_EQ(a.asString(), "image/png");
    EXPECT_EQ(b.asString(), "text/plain; charset=\"us-ascii\"");
}

TEST(KNMimeContentTypeTest, PrintingRefusesNonTokensMediaTypeFirst)
{
    EXPECT_EQ(thrownText<KNMimeError>([] { KNMimeContentType().asString(); }), invalidToken(""));
    EXPECT_EQ(thrownText<KNMimeError>([] { parsed("text/").asString(); }), invalidToken(""));
    EXPECT_EQ(thrownText<KNMimeError>([] { KNMimeContentType("a b", "c d", {}).asString(); }), invalidToken("a b"));
    EXPECT_EQ(thrownText<KNMimeError>([] { KNMimeContentType("a", "c d", {}).asString(); }), invalidToken("c d"));
    KNMimeContentType type("text", "plain", {});
    type.insertParameter(KNMimeParameter("bad name", "x"));
    EXPECT_EQ(thrownText<KNMimeError>([&] { type.asString(); }), invalidToken("bad name"));
}

TEST(KNMimeContentTypeTest, EqualityIgnoresCaseOfTypesAndOrderOfParameters)
{
    EXPECT_EQ(parsed("TEXT/Plain"), parsed("text/plain"));
    EXPECT_EQ(parsed("a/b; x=1; y=2"), parsed("a/b; Y=2; x=\"1\""));
    EXPECT_NE(parsed("a/b; x=1"), parsed("a/b; x=2"));
    EXPECT_NE(parsed("a/b"), parsed("a/c"));
    EXPECT_NE(parsed("a/b"), parsed("a/b; x=1"));
}

TEST(KNMimeContentTypeTest, ConstructorCopiesTheParametersGiven)
{
    KNMimeParameterList list;
    list.fromString("a=1; b=2");
    const KNMimeContentType type("x", "y", list);
    list.removeAllParameters();
    EXPECT_EQ(type.asString(), "x/y; a=\"1\"; b=\"2\"");
}

TEST(KNMimeTextTypeTest, DefaultsAndCharset)
{
    EXPECT_EQ(KNMimeTextType().asString(), "text/plain");
    EXPECT_EQ(KNMimeTextType("html", "utf-8").asString(), "text/html; charset=\"utf-8\"");
    EXPECT_EQ(KNMimeTextType("plain", "").getParameterCount(), 0u);
    KNMimeTextType text("plain", "a");
    text.insertParameter(KNMimeParameter("format", "flowed"));
    text.setCharset("b");
    EXPECT_EQ(text.asString(), "text/plain; format=\"flowed\"; charset=\"b\"");
    text.setCharset("");
    EXPECT_EQ(text.getCharset(), "");
    EXPECT_EQ(text.asString(), "text/plain; format=\"flowed\"");
}

TEST(KNMimeMultipartTypeTest, ConstructorsAlwaysGiveABoundary)
{
    const KNMimeMultipartType first, second;
    EXPECT_EQ(first.getSubType(), "mixed");
    EXPECT_EQ(first.getBoundary().rfind("_=_next_part_", 0), 0u);
    EXPECT_NE(first.getBoundary(), second.getBoundary());
    EXPECT_EQ(first.asString(), "multipart/mixed; boundary=\"" + first.getBoundary() + "\"");
    EXPECT_NE(KNMimeMultipartType("digest", "").getBoundary(), KNMimeMultipartType("digest", "").getBoundary());
    EXPECT_EQ(KNMimeMultipartType("alternative", "abc").asString(), "multipart/alternative; boundary=\"abc\"");
    KNMimeMultipartType moved("mixed", "abc");
    moved.insertParameter(KNMimeParameter("x", "1"));
    moved.setBoundary("def");
    EXPECT_EQ(moved.asString(), "multipart/mixed; x=\"1\"; boundary=\"def\"");
    moved.setBoundary("");
    EXPECT_EQ(moved.asString(), "multipart/mixed; x=\"1\"");
}

TEST(KNMimeMultipartRelatedTypeTest, ParametersInConstructionOrder)
{
    const KNMimeMultipartRelatedType all("text/html", "<start>", "info", "b");
    EXPECT_EQ(all.asString(),
              "multipart/related; boundary=\"b\"; type=\"text/html\"; start=\"<start>\"; start_info=\"info\"");
    EXPECT_EQ(all.getStartInfo(), "info");
    EXPECT_EQ(all.getType(), "text/html");
    EXPECT_EQ(all.getStart(), "<start>");
    const KNMimeMultipartRelatedType bare("", "", "", "");
    EXPECT_EQ(bare.getParameterCount(), 1u);
    EXPECT_FALSE(bare.getBoundary().empty());
    EXPECT_EQ(KNMimeMultipartRelatedType().getSubType(), "related");
    EXPECT_FALSE(KNMimeMultipartRelatedType().getBoundary().empty());
}

TEST(KNMimeSpecialisedTypeTest, ConversionsCheckTheMediaTypeAndShareTheBody)
{
    const KNMimeContentType text = parsed("TEXT/x-foo");
    KNMimeTextType converted(text);
    EXPECT_TRUE(converted.sharesBodyWith(text));
    converted.setCharset("utf-8");
    EXPECT_EQ(text.getParameterValue("charset"), "utf-8");

    EXPECT_EQ(thrownText<KNMimeError>([] { KNMimeMultipartType m(parsed("text/plain")); }),
              invalidConversion("text/plain"));
    EXPECT_EQ(thrownText<KNMimeError>([] { KNMimeTextType t(parsed("image/png")); }),
              invalidConversion("image/png"));
    EXPECT_EQ(thrownText<KNMimeError>([] { KNMimeMultipartRelatedType r(parsed("multipart/mixed")); }),
              invalidConversion("multipart/mixed"));

    // A converted type keeps exactly its parameters: no boundary is made up.
    const KNMimeMultipartType multipart(parsed("Multipart/RELATED; type=x"));
    EXPECT_EQ(multipart.getBoundary(), "");
    const KNMimeMultipartRelatedType related(multipart);
    EXPECT_TRUE(related.sharesBodyWith(multipart));
    EXPECT_EQ(related.getType(), "x");
}

TEST(KNMimeSpecialisedTypeTest, ParsingConsultsTheOverriddenCheck)
{
    KNMimeTextType text("html", "utf-8");
    KNMimeMultipartType multipart("mixed", "b");
    KNMimeMultipartRelatedType related;
    const std::vector<std::pair<KNMimeContentType*, KNCString>> refused = {
        {&text, "image/png"}, {&multipart, "text/plain"}, {&related, "multipart/mixed"}};
    for (const auto& entry : refused) {
        KNMimeContentType* type = entry.first;
        const KNCString& input = entry.second;
        const KNCString before = type->asString();
        EXPECT_EQ(thrownText<KNMimeError>([&] { type->fromString(input + "; a=1"); }), invalidConversion(input));
        EXPECT_EQ(type->asString(), before);
    }
    multipart.fromString("multipart/alternative");
    EXPECT_EQ(multipart.getParameterCount(), 0u);
    related.fromString("MULTIPART/Related; start=\"<a>\"");
    EXPECT_EQ(related.getStart(), "<a>");
    text.fromString("Text/rich");
    EXPECT_EQ(text.getCharset(), "");
}

} // namespace
