// Single parts: the entity text format, the header list, sharing and equality of parts.

#include <mime/KNMimeContentTypeHeader.h>
#include <mime/KNMimeContentTypeHeaderImp.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeGenericHeader.h>
#include <mime/KNMimeHeaderFactory.h>
#include <mime/KNMimeMultipartType.h>
#include <mime/KNMimePart.h>

#include <foundation/KNBoundsErr.h>
#include <foundation/KNTHRInvalidPointer.h>

#include <gtest/gtest.h>
#include <tests/TestSupport.h>

#include <random>

namespace {

const char* const separatorError = "[MISSING_HEADER_BODY_SEPARATOR] Unable to separate message headers from body";

constexpr auto parsed = &parsedAs<KNMimePart>;

} // namespace

TEST(Part, ParsesHeaderBlockFoldsAndBody)
{
    // Texts in the printed form come back unchanged, with or without a header block.
    for (const char* text : {"\r\nHello", "\r\n\r\n", "Subject: a\r\n\r\n", "Subject: hi\r\nX-One: 1\r\n\r\nline 1\r\n\r\nline 3\r\n"})
        EXPECT_EQ(parsed(text).asString(), text);
    // Folds reach the header, which unfolds them; leading white space just starts the first header.
    EXPECT_EQ(parsed("A: 1\r\n\tand tab\r\n  two blanks\r\nB: 2\r\n\r\nx").asString(), "A: 1\tand tab  two blanks\r\nB: 2\r\n\r\nx");
    EXPECT_EQ(parsed(" Lead: x\r\n\r\n").asString(), "Lead: x\r\n\r\n");

    for (const char* text : {"\r\n", "", "Subject: a\nb", "Subject: a\r\n", "Subject: a\r\n\r", "A: 1\r\nB: 2\r\n\n\r\nx"})
        EXPECT_EQ(errorText<KNMimeParseError>([&] { parsed(text); }), separatorError) << text;
    // The header layer's own error passes unchanged.
    EXPECT_EQ(errorText<KNMimeParseError>([] { parsed("Subject: a\r\nno colon\r\n\r\nbody"); }),
              "[MISSING_HEADER_SEPARATOR] Unable to separate label from value");
}

TEST(Part, HeaderListIndexesAndBounds)
{
    KNMimePart p = parsed("Content-Type: text/plain\r\nX-A: 1\r\ncontent-TYPE: text/html\r\n\r\n");
    EXPECT_EQ(p.findHeader("CONTENT-TYPE", 1), 2u);
    EXPECT_EQ(p.findHeader("Content-Type", 3), KNCString::npos);

    const KNMimeGenericHeader x("X-New", "n");
    p.insertHeaderAt(3, x); // the count: appends
    p.insertHeaderAt(0, KNMimeGenericHeader("X-First", "f"));
    p.removeHeaderAt(2);
    EXPECT_EQ(p.asString(), "X-First: f\r\nContent-Type: text/plain\r\ncontent-TYPE: text/html\r\nX-New: n\r\n\r\n");

    EXPECT_EQ(errorText<KNBoundsErr>([&] { p.getHeader(4); }), "index 4 out of range [0, 4)");
    EXPECT_EQ(errorText<KNBoundsErr>([&] { p.removeHeaderAt(7); }), "index 7 out of range [0, 4)");
    // insertHeaderAt reports one below the index passed.
    EXPECT_EQ(errorText<KNBoundsErr>([&] { p.insertHeaderAt(5, x); }), "index 4 out of range [0, 4)");
    EXPECT_EQ(p.getHeaderCount(), 4u);
}

TEST(Part, PrintsThroughSharedHandlesAndHeaders)
{
    KNMimePart a;
    const KNMimePart b = a;
    EXPECT_EQ(b.asString(), "\r\n");
    EXPECT_EQ(errorText<KNMimeParseError>([&] { parsed(b.asString()); }), separatorError); // not reparsable
    KNMimeGenericHeader later("X-Later", "before");
    a.insertHeader(KNMimeGenericHeader("X-Fetched", "1"));
    a.insertHeader(later);
    a.setBody("text");
    later.setValue("after");
    KNMimeGenericHeader(a.getHeader(0)).setValue("changed");
    EXPECT_EQ(b.asString(), "X-Fetched: changed\r\nX-Later: after\r\n\r\ntext");

    KNMimePart empty(static_cast<KNMimePartImp*>(nullptr));
    EXPECT_EQ(errorText<KNTHRInvalidPointer>([&] { empty.fromString("\r\nx"); }), "Invalid pointer");
}

TEST(Part, KindFollowsTheFirstContentTypeAtCreationOnly)
{
    const KNMimePart multi{KNMimeContentType("MultiPart", "x-custom", KNMimeParameterList())};
    EXPECT_TRUE(multi.isMultipart());
    EXPECT_EQ(multi.getHeaderCount(), 1u); // no boundary checked, no other header added
    const KNCString text = "Content-Type: mUlTiPaRt/mixed; boundary=x\r\n\r\n--x--\r\n";
    EXPECT_TRUE(parsed(text).isMultipart());
    EXPECT_FALSE(parsed("Content-Type: text/plain\r\n" + text).isMultipart());

    KNMimePart p;
    p.insertHeader(KNMimeContentTypeHeader(KNMimeMultipartType("mixed", "x")));
    EXPECT_TRUE(p.hasMultipartHeader());
    EXPECT_FALSE(p.isMultipart());

    // Content-Type registered to another creator by the application: asking must not throw.
    auto factory = KNMimeHeaderFactory::instance();
    factory->unsetHeaderFunctor("Content-Type");
    EXPECT_NO_THROW(p.fromString(text));
    factory->setHeaderFunctor("Content-Type", &KNMimeContentTypeHeaderImp::make);
    EXPECT_FALSE(p.isMultipart());
    EXPECT_FALSE(p.hasMultipartHeader());
}

TEST(Part, EqualityComparesHeadersInOrderAndBodiesExactly)
{
    const KNMimePart a = parsed("X-A: 1\r\nX-B: 2\r\n\r\nbody");
    EXPECT_TRUE(a == parsed("x-a: 1\r\nX-B:   2\r\n\r\nbody")); // header equality, not header text
    EXPECT_TRUE(a != parsed("X-B: 2\r\nX-A: 1\r\n\r\nbody"));  // order counts
    EXPECT_TRUE(a != parsed("X-A: 1\r\nX-B: 2\r\n\r\nBody"));  // body case counts
    EXPECT_TRUE(a != parsed("X-A: 1\r\n\r\nbody"));
}

TEST(Part, RandomEntitiesSurvivePrintAndParse)
{
    std::mt19937 random(20240611);
    const KNCString alphabet = "abcXYZ019 -_.;=\"";
    for (int round = 0; round < 300; ++round) {
        KNMimePart part;
        for (std::size_t i = 0, headers = 1 + random() % 6; i < headers; ++i) {
            KNCString value = "v";
            for (std::size_t n = random() % 120; n > 0; --n)
                value += alphabet[random() % alphabet.size()];
            part.insertHeader(KNMimeGenericHeader("X-H" + std::to_string(i), value + "z"));
        }
        KNCString body;
        for (std::size_t n = random() % 400; n > 0; --n)
            body += static_cast<char>(random() % 256); // any byte, NUL and CR LF included
        part.setBody(body);
        const KNMimePart back = parsed(part.asString());
        ASSERT_TRUE(back == part) << part.asString(); // the bodies compare byte for byte
        ASSERT_EQ(back.asString(), part.asString());
    }
}
