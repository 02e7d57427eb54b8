// Single parts: the entity text format, the header list, sharing and equality of parts.

#include <mime/KNMimeContentTypeHeader.h>
#include <mime/KNMimeContentTypeHeaderImp.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeGenericHeader.h>
#include <mime/KNMimeHeaderFactory.h>
#include <mime/KNMimeMultipartType.h>
#include <mime/KNMimePart.h>
#include <mime/KNMimeTextType.h>

#include <foundation/KNBoundsErr.h>
#include <foundation/KNTHRInvalidPointer.h>

#include <gtest/gtest.h>

#include <random>

// Failures show the printed entity rather than the handle's bytes.
void PrintTo(const KNMimePart& part, std::ostream* os)
{
    try {
        *os << '"' << part.asString() << '"';
    } catch (const KNxmsg& e) {
        *os << "(unprintable: " << e.why() << ")";
    }
}

namespace {

const char* const separatorError = "[MISSING_HEADER_BODY_SEPARATOR] Unable to separate message headers from body";

KNMimePart parsed(const KNCString& text)
{
    KNMimePart part;
    part.fromString(text);
    return part;
}

template <class Error, class Call>
KNCString errorText(Call call)
{
    try {
        call();
    } catch (const Error& e) {
        return e.why();
    }
    return "(nothing thrown)";
}

KNCString headerValue(const KNMimePart& part, std::size_t i)
{
    return KNMimeGenericHeader(part.getHeader(i)).getValue();
}

} // namespace

TEST(Part, ParsesHeaderBlockAndBody)
{
    KNMimePart p = parsed("\r\nHello");
    EXPECT_EQ(p.getHeaderCount(), 0u);
    EXPECT_EQ(p.getBody(), "Hello");

    p = parsed("\r\n\r\n");
    EXPECT_EQ(p.getHeaderCount(), 0u);
    EXPECT_EQ(p.getBody(), "\r\n");

    p = parsed("Subject: a\r\n\r\n");
    ASSERT_EQ(p.getHeaderCount(), 1u);
    EXPECT_EQ(p.getHeader(0).getLabel(), "Subject");
    EXPECT_EQ(headerValue(p, 0), "a");
    EXPECT_EQ(p.getBody(), "");

    p = parsed("Subject: hi\r\nX-One: 1\r\n\r\nline 1\r\n\r\nline 3\r\n");
    ASSERT_EQ(p.getHeaderCount(), 2u);
    EXPECT_EQ(p.getHeader(1).getLabel(), "X-One");
    EXPECT_EQ(p.getBody(), "line 1\r\n\r\nline 3\r\n"); // only the first empty line separates
    EXPECT_FALSE(p.isMultipart());
}

TEST(Part, FoldedHeaderLinesReachTheHeaderWhole)
{
    KNMimePart p = parsed("A: b\r\n c\r\n\r\nx");
    ASSERT_EQ(p.getHeaderCount(), 1u);
    EXPECT_EQ(headerValue(p, 0), "b c"); // the header layer unfolded "b\r\n c"
    EXPECT_EQ(p.getBody(), "x");

    p = parsed("A: 1\r\n\tand tab\r\n  two blanks\r\nB: 2\r\n\r\n");
    ASSERT_EQ(p.getHeaderCount(), 2u);
    EXPECT_EQ(headerValue(p, 0), "1\tand tab  two blanks");
    EXPECT_EQ(headerValue(p, 1), "2");

    // A first line opening with white space simply starts the first header.
    p = parsed(" Lead: x\r\n\r\n");
    ASSERT_EQ(p.getHeaderCount(), 1u);
    EXPECT_EQ(p.getHeader(0).getLabel(), "Lead");
}

TEST(Part, RefusesTextWithoutSeparator)
{
    for (const char* text : {"\r\n", "", "Subject: a\nb", "Subject: a\n\nbody", "Subject: a\r\n", "Subject: a\r\n\r",
                             "no line end at all", "A: 1\r\nB: 2\r\n\n\r\nx"}) {
        EXPECT_EQ(errorText<KNMimeParseError>([&] { parsed(text); }), separatorError) << text;
    }
    // A header line the header layer refuses: its error passes unchanged.
    EXPECT_EQ(errorText<KNMimeParseError>([] { parsed("Subject: a\r\nno colon\r\n\r\nbody"); }),
              "[MISSING_HEADER_SEPARATOR] Unable to separate label from value");
}

TEST(Part, FailedParseLeavesHandleAndSharersUntouched)
{
    KNMimePart a = parsed("Subject: keep\r\n\r\nold body");
    KNMimePart b = a;
    const KNCString before = a.asString();

    EXPECT_THROW(a.fromString("Subject: x\nLF only"), KNMimeParseError);
    EXPECT_THROW(a.fromString("Subject: x\r\nbroken line\r\n\r\n"), KNMimeParseError);
    EXPECT_THROW(a.fromString("Content-Type: multipart/mixed\r\n\r\n--b--"), KNMimeError);
    EXPECT_TRUE(a.sharesBodyWith(b));
    EXPECT_EQ(a.asString(), before);
    EXPECT_EQ(b.asString(), before);

    // A successful parse rebinds only this handle.
    a.fromString("Subject: new\r\n\r\nnew body");
    EXPECT_FALSE(a.sharesBodyWith(b));
    EXPECT_EQ(b.asString(), before);
    EXPECT_EQ(a.getBody(), "new body");
}

TEST(Part, PrintsHeadersEmptyLineAndBody)
{
    KNMimePart p;
    EXPECT_EQ(p.asString(), "\r\n");
    EXPECT_EQ(errorText<KNMimeParseError>([&] { parsed(p.asString()); }), separatorError); // not reparsable

    p.insertHeader(KNMimeGenericHeader("H1", "one"));
    p.insertHeader(KNMimeGenericHeader("H2", "two"));
    p.setBody("B");
    EXPECT_EQ(p.asString(), "H1: one\r\nH2: two\r\n\r\nB");
    EXPECT_EQ(parsed(p.asString()), p);

    // The body is kept and printed verbatim: bare line ends, NUL and 8-bit bytes included.
    const KNCString odd("a\nb\rc\0d\xff\x80", 10);
    p.setBody(odd);
    EXPECT_EQ(p.getBody(), odd);
    EXPECT_EQ(p.asString(), "H1: one\r\nH2: two\r\n\r\n" + odd);
    EXPECT_EQ(parsed(p.asString()).getBody(), odd);

    // A header that cannot be printed makes the part unprintable.
    p.insertHeader(KNMimeHeader("Bad Label"));
    EXPECT_EQ(errorText<KNMimeError>([&] { p.asString(); }),
              "[INVALID_VERSION] The following is not a valid version:  \"Bad Label\"");
}

TEST(Part, HeaderListIndexesAndBounds)
{
    KNMimePart p = parsed("Content-Type: text/plain\r\nX-A: 1\r\ncontent-TYPE: text/html\r\n\r\n");
    EXPECT_EQ(p.findHeader("content-type", 0), 0u);
    EXPECT_EQ(p.findHeader("CONTENT-TYPE", 1), 2u);
    EXPECT_EQ(p.findHeader("Content-Type", 3), KNCString::npos);
    EXPECT_EQ(p.findHeader("Content-Type", 99), KNCString::npos);
    EXPECT_EQ(p.findHeader("X-Missing", 0), KNCString::npos);

    const KNMimeGenericHeader x("X-New", "n");
    p.insertHeaderAt(3, x); // count: appends
    EXPECT_EQ(p.getHeader(3).getLabel(), "X-New");
    p.insertHeaderAt(0, KNMimeGenericHeader("X-First", "f"));
    EXPECT_EQ(p.getHeader(0).getLabel(), "X-First");
    EXPECT_EQ(p.getHeaderCount(), 5u);

    EXPECT_EQ(errorText<KNBoundsErr>([&] { p.getHeader(5); }), "index 5 out of range [0, 5)");
    EXPECT_EQ(errorText<KNBoundsErr>([&] { p.removeHeaderAt(7); }), "index 7 out of range [0, 5)");
    // insertHeaderAt reports one below the index passed.
    EXPECT_EQ(errorText<KNBoundsErr>([&] { p.insertHeaderAt(6, x); }), "index 5 out of range [0, 5)");
    EXPECT_EQ(errorText<KNBoundsErr>([&] { p.insertHeaderAt(9, x); }), "index 8 out of range [0, 5)");
    EXPECT_EQ(p.getHeaderCount(), 5u);

    p.removeHeaderAt(0);
    p.removeHeaderAt(3);
    EXPECT_EQ(p.getHeaderCount(), 3u);
    EXPECT_EQ(p.getHeader(0).getLabel(), "Content-Type");
    EXPECT_EQ(p.getHeader(2).getLabel(), "content-TYPE");
    EXPECT_EQ(errorText<KNBoundsErr>([] { KNMimePart().removeHeaderAt(0); }), "index 0 out of range [0, 0)");
}

TEST(Part, HandlesAndStoredHeadersShareBodies)
{
    KNMimePart a;
    KNMimePart b = a;
    b.insertHeader(KNMimeGenericHeader("X-Shared", "1"));
    b.setBody("text");
    EXPECT_EQ(a.getHeaderCount(), 1u);
    EXPECT_EQ(a.getBody(), "text");

    KNMimePart& same = a;
    a = same; // self-assignment keeps the body
    EXPECT_EQ(a.getBody(), "text");

    // A stored header and a fetched one share the caller's header body.
    KNMimeGenericHeader h("X-Later", "before");
    a.insertHeader(h);
    h.setValue("after");
    EXPECT_EQ(headerValue(a, 1), "after");
    KNMimeGenericHeader(a.getHeader(0)).setValue("changed");
    EXPECT_EQ(b.asString(), "X-Shared: changed\r\nX-Later: after\r\n\r\ntext");
}

TEST(Part, EmptyHandle)
{
    KNMimePart empty(static_cast<KNMimePartImp*>(nullptr));
    const KNCString invalid = "Invalid pointer";
    EXPECT_EQ(errorText<KNTHRInvalidPointer>([&] { empty.asString(); }), invalid);
    EXPECT_EQ(errorText<KNTHRInvalidPointer>([&] { empty.getHeaderCount(); }), invalid);
    EXPECT_EQ(errorText<KNTHRInvalidPointer>([&] { empty.setBody("x"); }), invalid);
    EXPECT_EQ(errorText<KNTHRInvalidPointer>([&] { (void)(empty == KNMimePart()); }), invalid);
    EXPECT_EQ(errorText<KNTHRInvalidPointer>([&] { empty.hasMultipartHeader(); }), invalid);
    // fromString needs no old body: it fills an empty handle.
    empty.fromString("\r\nnow filled");
    EXPECT_EQ(empty.getBody(), "now filled");
}

TEST(Part, KindFollowsContentTypeAtCreationOnly)
{
    const KNMimePart text{KNMimeTextType("html", "utf-8")};
    EXPECT_FALSE(text.isMultipart());
    EXPECT_EQ(text.asString(), "Content-Type: text/html; charset=\"utf-8\"\r\n\r\n");

    const KNMimePart multi{KNMimeContentType("MultiPart", "x-custom", KNMimeParameterList())};
    EXPECT_TRUE(multi.isMultipart());
    EXPECT_EQ(multi.getHeaderCount(), 1u); // no boundary is checked or added

    for (const char* type : {"multipart", "MULTIPART", "mUlTiPaRt"}) {
        const KNMimePart p = parsed(KNCString("Content-Type: ") + type + "/mixed; boundary=x\r\n\r\n--x--\r\n");
        EXPECT_TRUE(p.isMultipart()) << type;
        EXPECT_TRUE(p.hasMultipartHeader());
    }

    // Only the first Content-Type counts.
    EXPECT_FALSE(parsed("Content-Type: text/plain\r\nContent-Type: multipart/mixed; boundary=x\r\n\r\n--x--").isMultipart());
    EXPECT_FALSE(parsed("X: 1\r\n\r\n--x--").hasMultipartHeader());

    // Headers changed later never convert the body.
    KNMimePart p;
    p.insertHeader(KNMimeContentTypeHeader(KNMimeMultipartType("mixed", "x")));
    EXPECT_TRUE(p.hasMultipartHeader());
    EXPECT_FALSE(p.isMultipart());
    p.setBody("--x--\r\n");
    EXPECT_EQ(p.getBody(), "--x--\r\n");
}

TEST(Part, ContentTypeWithAnotherBodyIsNotMultipart)
{
    // An application may register another creator for Content-Type; such a header cannot
    // name a multipart, and asking must not throw.
    auto factory = KNMimeHeaderFactory::instance();
    factory->unsetHeaderFunctor("Content-Type");
    const KNCString text = "Content-Type: multipart/mixed; boundary=x\r\n\r\n--x--\r\n";
    KNMimePart p;
    EXPECT_NO_THROW(p.fromString(text));
    factory->setHeaderFunctor("Content-Type", &KNMimeContentTypeHeaderImp::make);

    EXPECT_FALSE(p.isMultipart());
    EXPECT_FALSE(p.hasMultipartHeader());
    EXPECT_EQ(p.asString(), text);
    EXPECT_TRUE(parsed(text).isMultipart()); // registration restored
}

TEST(Part, EqualityComparesHeadersInOrderAndBodiesExactly)
{
    const KNMimePart a = parsed("X-A: 1\r\nX-B: 2\r\n\r\nbody");
    EXPECT_EQ(a, parsed("x-a: 1\r\nX-B:   2\r\n\r\nbody")); // labels ignore case, values are trimmed
    EXPECT_NE(a, parsed("X-B: 2\r\nX-A: 1\r\n\r\nbody"));  // order counts
    EXPECT_NE(a, parsed("X-A: 1\r\nX-B: 2\r\n\r\nBody"));  // body case counts
    EXPECT_NE(a, parsed("X-A: 1\r\n\r\nbody"));
    EXPECT_NE(a, parsed("X-A: 1\r\nX-B: 2\r\nX-C: 3\r\n\r\nbody"));
    EXPECT_EQ(parsed("Content-Type: TEXT/Plain\r\n\r\nx"), parsed("Content-Type: text/plain\r\n\r\nx")); // typed values
    EXPECT_FALSE(a != a);
}

TEST(Part, RandomEntitiesSurvivePrintAndParse)
{
    std::mt19937 random(20240611);
    const KNCString alphabet = "abcXYZ019 -_.;=\"";
    auto randomText = [&](std::size_t maxLength) {
        KNCString s;
        const std::size_t n = random() % maxLength;
        for (std::size_t i = 0; i < n; ++i)
            s += alphabet[random() % alphabet.size()];
        return s;
    };
    for (int round = 0; round < 300; ++round) {
        KNMimePart part;
        const std::size_t headers = 1 + random() % 6;
        for (std::size_t i = 0; i < headers; ++i)
            part.insertHeader(KNMimeGenericHeader("X-H" + std::to_string(i), "v" + randomText(120) + "z"));
        KNCString body;
        const std::size_t bytes = random() % 400;
        for (std::size_t i = 0; i < bytes; ++i)
            body += static_cast<char>(random() % 256); // any byte, NUL and CR LF included
        part.setBody(body);

        const KNCString printed = part.asString();
        const KNMimePart back = parsed(printed);
        ASSERT_EQ(back, part) << printed;
        ASSERT_EQ(back.getBody(), body);
        ASSERT_EQ(back.asString(), printed);
    }
}
