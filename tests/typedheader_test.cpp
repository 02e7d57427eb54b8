// The typed header handles: conversion from a general header, typed values, and the
// generic header for labels the factory does not know.
#include <foundation/KNTHRInvalidPointer.h>
#include <mime/KNMimeContentDescriptionHeader.h>
#include <mime/KNMimeContentIdHeader.h>
#include <mime/KNMimeContentLocationHeader.h>
#include <mime/KNMimeContentTransferEncodingHeader.h>
#include <mime/KNMimeContentTypeHeader.h>
#include <mime/KNMimeContentTypeImp.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeGenericHeader.h>
#include <mime/KNMimePart.h>
#include <mime/KNMimeParameterList.h>
#include <mime/KNMimeVersionHeader.h>

#include <gtest/gtest.h>
#include <tests/TestSupport.h>

#include <tuple>
#include <typeinfo>

namespace {

constexpr auto parsed = &parsedAs<KNMimeHeader>;

TEST(KNMimeTypedHeaderTest, ConversionSharesTheBodyButNewHandlesAndCopiesDoNot)
{
    const KNMimeHeader general = parsed("content-type: text/html; charset=us-ascii");
    const KNMimeContentTypeHeader typed(general);
    typed.getContentType().setParameterValue("charset", "utf-8");
    EXPECT_EQ(general.asString(), "content-type: text/html; charset=\"utf-8\"");

    const KNMimeHeader priority = parsed("X-Priority: 3");
    KNMimeGenericHeader(priority).setValue("1");
    EXPECT_EQ(priority.asString(), "X-Priority: 1");
    // The factory's spelling of this label differs from the handle's.
    EXPECT_EQ(KNMimeContentIdHeader(KNMimeHeader("Content-Id")).getLabel(), "Content-Id");

    // New handles and copies have bodies of their own.
    const KNMimeContentTypeHeader a;
    const KNMimeContentTypeHeader b;
    a.getContentType().setParameterValue("charset", "utf-8");
    EXPECT_EQ(b.asString(), "Content-Type: text/plain");
    const KNMimeContentTypeHeader deep(a.copy());
    deep.getContentType().setParameterValue("charset", "latin1");
    EXPECT_EQ(a.asString(), "Content-Type: text/plain; charset=\"utf-8\"");

    EXPECT_EQ(KNMimeGenericHeader("X-Mailer", " tool  =?utf-8?Q?x?= ").asString(), "X-Mailer:  tool  =?utf-8?Q?x?= ");
}

TEST(KNMimeTypedHeaderTest, RefusesLabelsValuesAndMissingBodiesWithExactMessages)
{
    const KNCString conversion = "[INVALID_HEADER_CONVERSION] Unable to convert from \"";
    const KNCString known = "[KNOWN_HEADER_TYPE] Cannot create KNMimeGenericHeader for known type \"";
    const KNCString token = "[INVALID_TOKEN] The following is not a valid token:  \"";
    const KNCString version = "[INVALID_VERSION] The following is not a valid version:  \"";
    expectError<KNMimeError>([] { KNMimeContentTypeHeader{parsed("Subject: x")}; }, conversion + "Subject\"");
    expectError<KNMimeError>([] { KNMimeVersionHeader{KNMimeContentIdHeader()}; }, conversion + "Content-ID\"");
    expectError<KNMimeError>([] { KNMimeGenericHeader("mime-version", "1.0"); }, known + "mime-version\"");
    expectError<KNMimeError>([] { KNMimeGenericHeader{parsed("Content-ID: x")}; }, known + "Content-ID\"");
    expectError<KNMimeError>([] { KNMimeContentTransferEncodingHeader().asString(); }, token + "\"");
    expectError<KNMimeError>([] { parsed("Content-Transfer-Encoding: a b").asString(); }, token + "a b\"");

    // Parsing names the label the handle had, not the one it was asked to parse, and the
    // generic header reports a registered label as a failed conversion there.
    KNMimeContentTypeHeader typed;
    const KNMimeHeader before = typed;
    expectError<KNMimeError>([&] { typed.fromString("Subject: x"); }, conversion + "Content-Type\"");
    expectError<KNMimeError>([] { KNMimeGenericHeader().fromString("mime-version: 1.0"); }, conversion + "\"");
    EXPECT_TRUE(typed.sharesBodyWith(before));
    typed.fromString("CONTENT-TYPE: Text/HTML (c)");
    EXPECT_FALSE(typed.sharesBodyWith(before));
    EXPECT_EQ(typed.asString(), "CONTENT-TYPE: Text/HTML");

    // Kept on purpose: a failed version read keeps the major number read before the failure.
    KNMimeVersionHeader three(3, 7);
    expectError<KNMimeParseError>([&] { three.body()->setValueFromString("x.1"); }, version + "x.1\"");
    expectError<KNMimeParseError>([&] { three.body()->setValueFromString("(c) 2"); }, version + "(c) 2\"");
    EXPECT_EQ(three.asString(), "MIME-Version: 2.7");
    expectError<KNMimeParseError>([&] { three.fromString("MIME-Version: 9"); }, version + "9\"");
    EXPECT_EQ(three.asString(), "MIME-Version: 9.0"); // a new body, read as far as it went
    // Numbers beyond 32 bits are refused rather than wrapped; the largest one reads.
    for (const KNCString big : {"99999999999.1", "4294967296.0", "1.4294967296", "-4294967296.0"})
        expectError<KNMimeParseError>([&] { three.body()->setValueFromString(big); }, version + big + "\"");
    EXPECT_EQ(three.asString(), "MIME-Version: 1.0");
    three.body()->setValueFromString(" +4294967295. \t\v7");
    EXPECT_EQ(three.asString(), "MIME-Version: 4294967295.7");
    three.body()->setValueFromString("10.\"\t\v20\"");
    EXPECT_EQ(three.asString(), "MIME-Version: 10.20");
    expectError<KNMimeParseError>([&] { three.body()->setValueFromString("3 .1"); }, version + "3 .1\"");
    expectError<KNMimeParseError>([&] { three.body()->setValueFromString("5.+"); }, version + "5.+\"");
    EXPECT_EQ(three.asString(), "MIME-Version: 5.20");

    const KNCString invalid = "Invalid pointer";
    expectError<KNTHRInvalidPointer>([] { KNMimeVersionHeader(nullptr).getMajorVersion(); }, invalid);
    expectError<KNTHRInvalidPointer>([] { KNMimeHeader(nullptr).fromString("A: b"); }, invalid);
    // A body of another class is refused as well, never used as the wrong type.
    const KNMimeHeader relabelled("X-Version");
    relabelled.body()->setLabel("MIME-Version");
    expectError<KNTHRInvalidPointer>([&] { KNMimeVersionHeader(relabelled).getMajorVersion(); }, invalid);
}

TEST(KNMimeTypedHeaderTest, SettersReadBackAndPrint)
{
    KNMimeContentIdHeader id("<a@b>");
    EXPECT_EQ(id.getId(), "<a@b>");
    id.setId("<c@d>");
    EXPECT_EQ(id.getId() + "|" + id.asString(), "<c@d>|Content-ID: <c@d>");
    KNMimeContentLocationHeader location("http://example.net/a");
    EXPECT_EQ(location.getURI(), "http://example.net/a");
    location.setURI("b.png");
    EXPECT_EQ(location.getURI() + "|" + location.asString(), "b.png|Content-Location: b.png");
    KNMimeContentDescriptionHeader description("first");
    EXPECT_EQ(description.getDescription(), "first");
    description.setDescription("second one");
    EXPECT_EQ(description.getDescription() + "|" + description.asString(),
              "second one|Content-Description: second one");
    KNMimeContentTypeHeader type;
    type.getContentType().body()->setMediaType("image");
    type.getContentType().body()->setSubType("png");
    EXPECT_EQ(type.asString(), "Content-Type: image/png");
}

TEST(KNMimeTypedHeaderTest, EachBodyReadsAndComparesItsValueItsOwnWay)
{
    const std::pair<const char*, const char*> printed[] = {
        {"Content-Transfer-Encoding:  Base64 (why not) ", "Content-Transfer-Encoding: Base64"},
        {"MIME-Version: 1.0 (produced by (nested) tool)", "MIME-Version: 1.0"},
        {"MIME-Version: 1.0.5", "MIME-Version: 1.0"},
        {"MIME-Version: -1.0", "MIME-Version: 4294967295.0"},
    };
    for (const auto& [line, text] : printed)
        EXPECT_EQ(parsed(line).asString(), text);
    const std::tuple<const char*, const char*, bool> comparisons[] = {
        {"MIME-Version: 1.0", "mime-version: 1.00", true},
        {"MIME-Version: 1.0", "MIME-Version: 1.1", false},
        {"Content-Transfer-Encoding: base64", "Content-Transfer-Encoding: BASE64", true},
        {"Content-ID: <a@b>", "Content-ID: <A@b>", false},
        {"Content-Type: TEXT/plain; a=1; b=2", "content-type: text/Plain; b=2; a=1", true},
    };
    for (const auto& [a, b, equal] : comparisons)
        EXPECT_EQ(parsed(a) == parsed(b), equal) << a << " / " << b;
}

} // namespace
TEST(KNMimeTypedHeaderTest, AContentTypeBodyOfTheApplicationsOwnClassPrintsItsOwnWay)
{
    // Headers print into the entity's buffer, except a content type whose class prints
    // itself differently: its asString is what the header shows, in a part as alone.
    struct Shouting : KNMimeContentTypeImp {
        KNCString asString() const override { return "TEXT/PLAIN"; }
        Shouting* copy() const override { return new Shouting(*this); }
    };
    KNMimeContentTypeHeader header;
    header.setContentType(KNMimeContentType(new Shouting));
    EXPECT_EQ(header.asString(), "Content-Type: TEXT/PLAIN");
    KNMimePart part;
    part.insertHeader(header);
    EXPECT_EQ(part.asString(), "Content-Type: TEXT/PLAIN\r\n\r\n");
    header.setContentType(KNMimeContentType("text", "html", KNMimeParameterList()));
    EXPECT_EQ(part.asString(), "Content-Type: text/html\r\n\r\n");
}
