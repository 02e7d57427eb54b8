#include <mime/KNMimeError.h>
#include <mime/KNMimeMessages.h>

#include <gtest/gtest.h>

#include <typeinfo>

namespace {

// Every record in number order from 32768, with its exact default text (double blanks included).
const std::pair<const KNCatMsg* (*)(), const char*> catalogue[] = {
    {knmime_INVALID_HEADER_CONVERSION, "[INVALID_HEADER_CONVERSION] Unable to convert from \"%s\""},
    {knmime_INVALID_TYPE_CONVERSION, "[INVALID_TYPE_CONVERSION] Unable to convert from \"%s/%s\""},
    {knmime_INVALID_MULTIPART_CONVERSION,
        "[INVALID_MULTIPART_CONVERSION] Unable to convert non-multipart message to multipart"},
    {knmime_KNOWN_HEADER_TYPE, "[KNOWN_HEADER_TYPE] Cannot create KNMimeGenericHeader for known type \"%s\""},
    {knmime_MISSING_TYPE_SEPARATOR, "[MISSING_TYPE_SEPARATOR] Unable to separate media type from subtype"},
    {knmime_MISSING_HEADER_SEPARATOR, "[MISSING_HEADER_SEPARATOR] Unable to separate label from value"},
    {knmime_MISSING_HEADER_BODY_SEPARATOR,
        "[MISSING_HEADER_BODY_SEPARATOR] Unable to separate message headers from body"},
    {knmime_MISSING_PARAMETER_SEPARATOR,
        "[MISSING_PARAMETER_SEPARATOR] Unable to separate parameter name from value"},
    {knmime_MISSING_HEADER, "[MISSING_HEADER] The required header \"%s\" not found"},
    {knmime_MISSING_BOUNDARY_PARAMETER,
        "[MISSING_BOUNDARY_PARAMETER] The required \"boundary\" parameter on \"Content-Type\" not found"},
    {knmime_MISSING_BOUNDARY, "[MISSING_BOUNDARY] Unable to find boundary string \"%s\" in message body"},
    {knmime_UNKNOWN_ENCODING, "[UNKNOWN_ENCODING] The encoding \"%s\" is not recognized"},
    {knmime_INVALID_BASE64_CHAR, "[INVALID_BASE64_CHAR] '%c' is not a valid base64 character"},
    {knmime_INVALID_VERSION, "[INVALID_VERSION] The following is not a valid version:  \"%s\""},
    {knmime_INVALID_LABEL, "[INVALID_LABEL] The following is not a valid label:  \"%s\""},
    {knmime_INVALID_TOKEN, "[INVALID_TOKEN] The following is not a valid token:  \"%s\""},
    {knmime_INVALID_VALUE, "[INVALID_VALUE] The following is not a valid header value:  \"%s\""},
    {knmime_INVALID_CHARSET, "[INVALID_CHARSET] The following is not a valid charset:  \"%s\""},
    {knmime_NESTING_TOO_DEEP, "[NESTING_TOO_DEEP] Multipart nesting exceeds %u levels"},
    {knmime_CYCLIC_PART, "[CYCLIC_PART] A multipart cannot contain itself"}};

// What f throws: "parse: " or "error: " for the exact type, then the text.
template <class F>
KNCString thrown(F f)
{
    try {
        f();
    } catch (const KNxmsg& e) {
        const bool parse = typeid(e) == typeid(KNMimeParseError);
        return (parse ? "parse: " : typeid(e) == typeid(KNMimeError) ? "error: " : "other: ") + e.why();
    }
    return "nothing";
}

} // namespace

TEST(Errors, CatalogueRecords)
{
    std::int32_t number = 32768;
    for (const auto& [accessor, text] : catalogue) {
        const KNCatMsg* msg = accessor();
        ASSERT_NE(msg, nullptr);
        EXPECT_EQ(msg, accessor()); // one static record
        EXPECT_STREQ(msg->domainName, "mime_");
        EXPECT_EQ(msg->msgNumber, number++);
        EXPECT_STREQ(msg->defaultText, text);
    }
}

TEST(Errors, KNThrowThrowsTheOverloadsTypeAndRaiseTheDynamicOne)
{
    const KNMimeParseError parse{KNMessage(knmime_UNKNOWN_ENCODING(), KNCString("x-uu"))};
    const KNMimeError plain{KNCString("ready text")};
    const KNCString text = "[UNKNOWN_ENCODING] The encoding \"x-uu\" is not recognized";
    EXPECT_EQ(thrown([&] { KNThrow(parse); }), "parse: " + text);
    EXPECT_EQ(thrown([&] { KNThrow(plain); }), "error: ready text"); // passes a parse-error handler
    // The overload's type is thrown, even for a parse error seen through a base reference.
    EXPECT_EQ(thrown([&] { KNThrow(static_cast<const KNMimeError&>(parse)); }), "error: " + text);
    // raise() rethrows the dynamic type, whatever the reference it is called through.
    EXPECT_EQ(thrown([&] { static_cast<const KNxmsg&>(parse).raise(); }), "parse: " + text);
    EXPECT_EQ(thrown([&] { static_cast<const KNxmsg&>(plain).raise(); }), "error: ready text");
}
