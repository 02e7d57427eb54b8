// The typed header handles: conversion from a general header, typed values, and the
// generic header for labels the factory does not know.
#include <foundation/KNTHRInvalidPointer.h>
#include <mime/KNMimeContentDescriptionHeader.h>
#include <mime/KNMimeContentDispositionHeader.h>
#include <mime/KNMimeContentIdHeader.h>
#include <mime/KNMimeContentLocationHeader.h>
#include <mime/KNMimeContentTransferEncodingHeader.h>
#include <mime/KNMimeContentTypeHeader.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeGenericHeader.h>
#include <mime/KNMimeHeader.h>
#include <mime/KNMimeVersionHeader.h>

#include <gtest/gtest.h>

namespace {

KNMimeHeader parsed(const KNCString& line)
{
    KNMimeHeader header;
    header.fromString(line);
    return header;
}

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

KNCString refused(const KNCString& label)
{
    return "[INVALID_HEADER_CONVERSION] Unable to convert from \"" + label + "\"";
}

KNCString known(const KNCString& label)
{
    return "[KNOWN_HEADER_TYPE] Cannot create KNMimeGenericHeader for known type \"" + label + "\"";
}

KNCString badVersion(const KNCString& text)
{
    return "[INVALID_VERSION] The following is not a valid version:  \"" + text + "\"";
}

TEST(KNMimeTypedHeaderTest, ConversionSharesTheBodyOfTheGeneralHeader)
{
    const KNMimeHeader general = parsed("content-type: text/html; charset=us-ascii");
    KNMimeContentTypeHeader typed(general);
    EXPECT_TRUE(typed.sharesBodyWith(general));
    typed.getContentType().setParameterValue("charset", "utf-8");
    EXPECT_EQ(general.asString(), "content-type: text/html; charset=\"utf-8\"");
    typed.setContentType(KNMimeContentType("image", "png", KNMimeParameterList()));
    EXPECT_EQ(general.asString(), "content-type: image/png");

    const KNMimeContentIdHeader id(parsed("CONTENT-ID: <a@b>"));
    EXPECT_EQ(id.getId(), "<a@b>");
    EXPECT_EQ(KNMimeContentIdHeader(KNMimeHeader("Content-Id")).getLabel(), "Content-Id");

    EXPECT_EQ(errorText<KNMimeError>([] { KNMimeContentTypeHeader{parsed("Subject: x")}; }), refused("Subject"));
    EXPECT_EQ(errorText<KNMimeError>([] { KNMimeVersionHeader{KNMimeHeader()}; }), refused(""));
    EXPECT_EQ(errorText<KNMimeError>([] { KNMimeContentLocationHeader{KNMimeContentIdHeader()}; }),
              refused("Content-ID"));
    EXPECT_EQ(errorText<KNTHRInvalidPointer>([] { KNMimeContentIdHeader{KNMimeHeader(nullptr)}; }),
              "Invalid pointer");
}

TEST(KNMimeTypedHeaderTest, ParsingIntoATypedHandleChecksTheLabel)
{
    KNMimeContentTypeHeader typed;
    const KNMimeHeader before = typed;
    // The refusal names the label the handle had, not the one it was asked to parse.
    EXPECT_EQ(errorText<KNMimeError>([&] { typed.fromString("Subject: x"); }), refused("Content-Type"));
    EXPECT_TRUE(typed.sharesBodyWith(before));

    typed.fromString("CONTENT-TYPE: Text/HTML (c)");
    EXPECT_FALSE(typed.sharesBodyWith(before));
    EXPECT_EQ(typed.getContentType().getSubType(), "HTML");
    EXPECT_EQ(typed.asString(), "CONTENT-TYPE: Text/HTML");
    EXPECT_EQ(before.asString(), "Content-Type: text/plain");

    KNMimeGenericHeader generic;
    EXPECT_EQ(errorText<KNMimeError>([&] { generic.fromString("mime-version: 1.0"); }), refused(""));
    generic.fromString("X-Mailer: tool 1.0");
    EXPECT_EQ(generic.getValue(), "tool 1.0");
}

TEST(KNMimeTypedHeaderTest, ContentTypeHeadersOwnTheirValues)
{
    const KNMimeContentTypeHeader a;
    const KNMimeContentTypeHeader b;
    const KNMimeContentTypeHeader fromFactory(KNMimeHeader("Content-Type"));
    a.getContentType().setParameterValue("charset", "utf-8");
    EXPECT_EQ(a.asString(), "Content-Type: text/plain; charset=\"utf-8\"");
    EXPECT_EQ(b.asString(), "Content-Type: text/plain");
    EXPECT_EQ(fromFactory.asString(), "Content-Type: text/plain");

    const KNMimeContentTypeHeader deep(a.copy());
    EXPECT_TRUE(deep == a);
    deep.getContentType().setParameterValue("charset", "latin1");
    EXPECT_EQ(a.getContentType().getParameterValue("charset"), "utf-8");
    EXPECT_TRUE(deep != a);

    const KNMimeContentDispositionHeader disposition(KNMimeContentDisposition("attachment", "a.txt"));
    const KNMimeContentDispositionHeader copied(disposition.copy());
    copied.getContentDisposition().setFilename("b.txt");
    EXPECT_EQ(disposition.asString(), "Content-Disposition: attachment; filename=\"a.txt\"");
    EXPECT_EQ(copied.getContentDisposition().getFilename(), "b.txt");

    // Parameter order does not matter, case of type names does not either.
    EXPECT_TRUE(parsed("Content-Type: TEXT/plain; a=1; b=2") == parsed("content-type: text/Plain; b=2; a=1"));
    EXPECT_EQ(errorText<KNMimeParseError>([] { parsed("Content-Disposition: attachment; filename"); }),
              "[MISSING_PARAMETER_SEPARATOR] Unable to separate parameter name from value");
    EXPECT_EQ(errorText<KNMimeError>([] { parsed("Content-Type: text/").asString(); }),
              "[INVALID_TOKEN] The following is not a valid token:  \"\"");
}

TEST(KNMimeTypedHeaderTest, VersionReadsTwoNumbers)
{
    const KNMimeVersionHeader fresh;
    EXPECT_EQ(fresh.getMajorVersion(), 1u);
    EXPECT_EQ(fresh.getMinorVersion(), 0u);
    EXPECT_EQ(fresh.asString(), "MIME-Version: 1.0");
    EXPECT_EQ(KNMimeVersionHeader(4294967295u, 0).asString(), "MIME-Version: 4294967295.0");

    const KNMimeVersionHeader commented(parsed("MIME-Version: 1.0 (produced by (nested) tool)"));
    EXPECT_EQ(commented.asString(), "MIME-Version: 1.0");
    EXPECT_EQ(KNMimeVersionHeader(parsed("MIME-Version: 1.0.5")).getMinorVersion(), 0u);
    EXPECT_EQ(KNMimeVersionHeader(parsed("MIME-Version: 2. 3")).getMinorVersion(), 3u);
    EXPECT_EQ(KNMimeVersionHeader(parsed("MIME-Version: -1.0")).getMajorVersion(), 4294967295u);
    EXPECT_TRUE(parsed("MIME-Version: 1.0") == parsed("mime-version: 1.00"));
    EXPECT_TRUE(parsed("MIME-Version: 1.0") != parsed("MIME-Version: 1.1"));

    // A failed read keeps the number read before the failure.
    KNMimeVersionHeader version(3, 7);
    EXPECT_EQ(errorText<KNMimeParseError>([&] { version.body()->setValueFromString("(c) 2"); }), badVersion("(c) 2"));
    EXPECT_EQ(version.getMajorVersion(), 2u);
    EXPECT_EQ(version.getMinorVersion(), 7u);
    EXPECT_EQ(errorText<KNMimeParseError>([&] { version.body()->setValueFromString("x.1"); }), badVersion("x.1"));
    EXPECT_EQ(errorText<KNMimeParseError>([&] { version.body()->setValueFromString(""); }), badVersion(""));
    EXPECT_EQ(version.asString(), "MIME-Version: 2.7");
    // Parsing a whole line either succeeds or leaves the handle alone.
    EXPECT_EQ(errorText<KNMimeParseError>([&] { version.fromString("MIME-Version: 9"); }), badVersion("9"));
    EXPECT_EQ(version.asString(), "MIME-Version: 2.7");
}

TEST(KNMimeTypedHeaderTest, EncodingIsCleanedOnReadingAndCheckedOnPrinting)
{
    const KNMimeContentTransferEncodingHeader read(parsed("Content-Transfer-Encoding:  Base64 (why not) "));
    EXPECT_EQ(read.getEncoding(), "Base64");
    EXPECT_EQ(read.asString(), "Content-Transfer-Encoding: Base64");
    EXPECT_TRUE(read == KNMimeContentTransferEncodingHeader("BASE64"));
    EXPECT_TRUE(read != KNMimeContentTransferEncodingHeader("7bit"));

    const auto invalidToken = [](const KNCString& text) {
        return "[INVALID_TOKEN] The following is not a valid token:  \"" + text + "\"";
    };
    EXPECT_EQ(errorText<KNMimeError>([] { KNMimeContentTransferEncodingHeader().asString(); }), invalidToken(""));
    const KNMimeContentTransferEncodingHeader spaced(parsed("Content-Transfer-Encoding: quoted printable"));
    EXPECT_EQ(errorText<KNMimeError>([&] { spaced.asString(); }), invalidToken("quoted printable"));
    const KNMimeContentTransferEncodingHeader quoted(KNCString("\"8bit\""));
    EXPECT_EQ(errorText<KNMimeError>([&] { quoted.asString(); }), invalidToken("\"8bit\""));
}

TEST(KNMimeTypedHeaderTest, TextHeadersKeepTheirTextAsGiven)
{
    const KNMimeContentIdHeader id(KNCString("part1@example"));
    EXPECT_EQ(id.asString(), "Content-ID: part1@example");
    EXPECT_TRUE(id != KNMimeContentIdHeader(KNCString("PART1@example")));
    EXPECT_EQ(KNMimeContentLocationHeader(KNCString("http://x/a b")).getURI(), "http://x/a b");
    const KNMimeContentDescriptionHeader description(parsed("Content-Description:  A  (not a comment) "));
    EXPECT_EQ(description.getDescription(), "A  (not a comment)");
    EXPECT_EQ(KNMimeContentLocationHeader(parsed("content-location: \"a b\" (c)")).getURI(), "\"a b\"");
}

TEST(KNMimeTypedHeaderTest, GenericHeaderIsForUnknownLabelsOnly)
{
    const KNMimeGenericHeader mailer("X-Mailer", " tool  =?utf-8?Q?x?= ");
    EXPECT_EQ(mailer.asString(), "X-Mailer:  tool  =?utf-8?Q?x?= ");
    EXPECT_EQ(errorText<KNMimeError>([] { KNMimeGenericHeader("MIME-Version", "1.0"); }), known("MIME-Version"));
    EXPECT_EQ(errorText<KNMimeError>([] { KNMimeGenericHeader("mime-version", "1.0"); }), known("mime-version"));
    EXPECT_EQ(errorText<KNMimeError>([] { KNMimeGenericHeader{parsed("Content-ID: x")}; }), known("Content-ID"));

    const KNMimeHeader general = parsed("X-Priority: 3");
    KNMimeGenericHeader generic(general);
    generic.setValue("1");
    EXPECT_EQ(general.asString(), "X-Priority: 1");
    EXPECT_TRUE(generic.checkLabel(""));
    EXPECT_FALSE(generic.checkLabel("content-description"));
    const KNMimeGenericHeader unlabelled;
    EXPECT_EQ(unlabelled.getLabel(), "");
    EXPECT_EQ(errorText<KNMimeError>([&] { unlabelled.asString(); }),
              "[INVALID_VERSION] The following is not a valid version:  \"\"");
}

TEST(KNMimeTypedHeaderTest, EmptyTypedHandlesThrowInvalidPointer)
{
    const KNMimeContentTypeHeader type(static_cast<KNMimeContentTypeHeaderImp*>(nullptr));
    const KNMimeVersionHeader version(static_cast<KNMimeVersionHeaderImp*>(nullptr));
    const KNMimeGenericHeader generic(static_cast<KNMimeUnstructuredHeaderImp*>(nullptr));
    EXPECT_EQ(errorText<KNTHRInvalidPointer>([&] { type.getContentType(); }), "Invalid pointer");
    EXPECT_EQ(errorText<KNTHRInvalidPointer>([&] { version.getMajorVersion(); }), "Invalid pointer");
    EXPECT_EQ(errorText<KNTHRInvalidPointer>([&] { generic.getValue(); }), "Invalid pointer");
    // A body of another class is refused as well, never used as the wrong type.
    const KNMimeHeader relabelled("X-Version");
    relabelled.body()->setLabel("MIME-Version");
    const KNMimeVersionHeader mislabelled(relabelled);
    EXPECT_EQ(errorText<KNTHRInvalidPointer>([&] { mislabelled.getMajorVersion(); }), "Invalid pointer");
}

} // namespace
