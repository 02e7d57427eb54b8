#include <mime/KNMimeError.h>
#include <mime/KNMimeMessages.h>

#include <gtest/gtest.h>

#include <typeinfo>

namespace {

#define ID(id) {knmime_##id, #id}

// In number order from 32768.
const std::pair<const KNCatMsg* (*)(), const char*> catalogue[] = {ID(INVALID_HEADER_CONVERSION),
    ID(INVALID_TYPE_CONVERSION), ID(INVALID_MULTIPART_CONVERSION), ID(KNOWN_HEADER_TYPE),
    ID(MISSING_TYPE_SEPARATOR), ID(MISSING_HEADER_SEPARATOR), ID(MISSING_HEADER_BODY_SEPARATOR),
    ID(MISSING_PARAMETER_SEPARATOR), ID(MISSING_HEADER), ID(MISSING_BOUNDARY_PARAMETER), ID(MISSING_BOUNDARY),
    ID(UNKNOWN_ENCODING), ID(INVALID_BASE64_CHAR), ID(INVALID_VERSION), ID(INVALID_LABEL), ID(INVALID_TOKEN),
    ID(INVALID_VALUE), ID(INVALID_CHARSET), ID(NESTING_TOO_DEEP)};

#undef ID

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
    for (const auto& [accessor, id] : catalogue) {
        const KNCatMsg* msg = accessor();
        ASSERT_NE(msg, nullptr);
        EXPECT_EQ(msg, accessor()); // one static record
        EXPECT_STREQ(msg->domainName, "mime_");
        EXPECT_EQ(msg->msgNumber, number++);
        EXPECT_EQ(KNCString(msg->defaultText).rfind("[" + KNCString(id) + "] ", 0), 0u) << id;
    }
    // Nothing here throws these two, but they are public and their texts are fixed, double blank included.
    EXPECT_STREQ(knmime_INVALID_LABEL()->defaultText, "[INVALID_LABEL] The following is not a valid label:  \"%s\"");
    EXPECT_STREQ(knmime_INVALID_VALUE()->defaultText,
        "[INVALID_VALUE] The following is not a valid header value:  \"%s\"");
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
