#include <mime/KNMimeError.h>
#include <mime/KNMimeMessages.h>

#include <gtest/gtest.h>

#include <cstring>
#include <typeinfo>

namespace {

struct Record {
    const KNCatMsg* (*accessor)();
    std::int32_t number;
    const char* text;
};

const Record catalogue[] = {
    {knmime_INVALID_HEADER_CONVERSION, 32768, "[INVALID_HEADER_CONVERSION] Unable to convert from \"%s\""},
    {knmime_INVALID_TYPE_CONVERSION, 32769, "[INVALID_TYPE_CONVERSION] Unable to convert from \"%s/%s\""},
    {knmime_INVALID_MULTIPART_CONVERSION, 32770,
        "[INVALID_MULTIPART_CONVERSION] Unable to convert non-multipart message to multipart"},
    {knmime_KNOWN_HEADER_TYPE, 32771, "[KNOWN_HEADER_TYPE] Cannot create KNMimeGenericHeader for known type \"%s\""},
    {knmime_MISSING_TYPE_SEPARATOR, 32772, "[MISSING_TYPE_SEPARATOR] Unable to separate media type from subtype"},
    {knmime_MISSING_HEADER_SEPARATOR, 32773, "[MISSING_HEADER_SEPARATOR] Unable to separate label from value"},
    {knmime_MISSING_HEADER_BODY_SEPARATOR, 32774,
        "[MISSING_HEADER_BODY_SEPARATOR] Unable to separate message headers from body"},
    {knmime_MISSING_PARAMETER_SEPARATOR, 32775,
        "[MISSING_PARAMETER_SEPARATOR] Unable to separate parameter name from value"},
    {knmime_MISSING_HEADER, 32776, "[MISSING_HEADER] The required header \"%s\" not found"},
    {knmime_MISSING_BOUNDARY_PARAMETER, 32777,
        "[MISSING_BOUNDARY_PARAMETER] The required \"boundary\" parameter on \"Content-Type\" not found"},
    {knmime_MISSING_BOUNDARY, 32778, "[MISSING_BOUNDARY] Unable to find boundary string \"%s\" in message body"},
    {knmime_UNKNOWN_ENCODING, 32779, "[UNKNOWN_ENCODING] The encoding \"%s\" is not recognized"},
    {knmime_INVALID_BASE64_CHAR, 32780, "[INVALID_BASE64_CHAR] '%c' is not a valid base64 character"},
    {knmime_INVALID_VERSION, 32781, "[INVALID_VERSION] The following is not a valid version:  \"%s\""},
    {knmime_INVALID_LABEL, 32782, "[INVALID_LABEL] The following is not a valid label:  \"%s\""},
    {knmime_INVALID_TOKEN, 32783, "[INVALID_TOKEN] The following is not a valid token:  \"%s\""},
    {knmime_INVALID_VALUE, 32784, "[INVALID_VALUE] The following is not a valid header value:  \"%s\""},
    {knmime_INVALID_CHARSET, 32785, "[INVALID_CHARSET] The following is not a valid charset:  \"%s\""},
    {knmime_NESTING_TOO_DEEP, 32786, "[NESTING_TOO_DEEP] Multipart nesting exceeds %u levels"},
};

} // namespace

TEST(Errors, CatalogueRecords)
{
    std::int32_t expectedNumber = 32768;
    for (const Record& r : catalogue) {
        const KNCatMsg* msg = r.accessor();
        ASSERT_NE(msg, nullptr);
        EXPECT_EQ(msg, r.accessor()); // one static record
        EXPECT_STREQ(msg->domainName, "mime_");
        EXPECT_EQ(msg->msgNumber, r.number);
        EXPECT_EQ(msg->msgNumber, expectedNumber++);
        EXPECT_STREQ(msg->defaultText, r.text);
    }
    EXPECT_EQ(knmime_INVALID_CHARSET()->msgNumber, 32785);
}

TEST(Errors, FormattedTexts)
{
    const KNCString label = "X-Label";
    EXPECT_EQ(KNMessage(knmime_INVALID_HEADER_CONVERSION(), label).str(),
        "[INVALID_HEADER_CONVERSION] Unable to convert from \"X-Label\"");
    EXPECT_EQ(KNMessage(knmime_INVALID_TYPE_CONVERSION(), KNCString("text"), KNCString("plain")).str(),
        "[INVALID_TYPE_CONVERSION] Unable to convert from \"text/plain\"");
    EXPECT_EQ(KNMessage(knmime_MISSING_HEADER_SEPARATOR()).str(),
        "[MISSING_HEADER_SEPARATOR] Unable to separate label from value");
    EXPECT_EQ(KNMessage(knmime_INVALID_VERSION(), KNCString("1.x")).str(),
        "[INVALID_VERSION] The following is not a valid version:  \"1.x\"");
    EXPECT_EQ(KNMessage(knmime_NESTING_TOO_DEEP(), 100u).str(), "[NESTING_TOO_DEEP] Multipart nesting exceeds 100 levels");
    EXPECT_EQ(KNMimeError(KNMessage(knmime_UNKNOWN_ENCODING(), KNCString("x-uu"))).why(),
        "[UNKNOWN_ENCODING] The encoding \"x-uu\" is not recognized");
    EXPECT_EQ(KNMimeParseError(KNMessage(knmime_INVALID_BASE64_CHAR(), '*')).why(),
        "[INVALID_BASE64_CHAR] '*' is not a valid base64 character");
    const KNMimeError ready("ready text");
    EXPECT_EQ(ready.why(), "ready text");
    EXPECT_STREQ(ready.what(), "ready text");
}

TEST(Errors, HierarchyAndThrowing)
{
    const KNMimeParseError parse{KNMessage(knmime_MISSING_HEADER_SEPARATOR())};
    const KNMimeError plain{KNMessage(knmime_UNKNOWN_ENCODING(), KNCString("x"))};

    // A handler for KNMimeError catches a parse error, with its text.
    try {
        KNThrow(parse);
    } catch (const KNMimeError& e) {
        EXPECT_EQ(typeid(e), typeid(KNMimeParseError));
        EXPECT_EQ(e.why(), parse.why());
    }
    // A handler for KNMimeParseError lets a KNMimeError through.
    bool caughtAsParse = false;
    try {
        try {
            KNThrow(plain);
        } catch (const KNMimeParseError&) {
            caughtAsParse = true;
        }
    } catch (const KNxmsg& e) {
        EXPECT_EQ(typeid(e), typeid(KNMimeError));
    }
    EXPECT_FALSE(caughtAsParse);

    // KNThrow throws the type of the overload chosen, not the object's dynamic type.
    const KNMimeError& parseSeenAsBase = parse;
    try {
        KNThrow(parseSeenAsBase);
    } catch (const KNMimeParseError&) {
        ADD_FAILURE() << "sliced to KNMimeError expected";
    } catch (const KNMimeError& e) {
        EXPECT_EQ(typeid(e), typeid(KNMimeError));
        EXPECT_EQ(e.why(), parse.why());
    }

    // raise() rethrows as the most derived type, whatever the static type of the reference.
    const KNxmsg& asBase = parse;
    EXPECT_THROW(asBase.raise(), KNMimeParseError);
    const KNxmsg& plainAsBase = plain;
    try {
        plainAsBase.raise();
    } catch (const KNMimeError& e) {
        EXPECT_EQ(typeid(e), typeid(KNMimeError));
    }
}
