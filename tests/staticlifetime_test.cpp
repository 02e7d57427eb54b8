// The library used from an application's static constructors and destructors: the named
// constants hold their texts before any initialiser of the library has run, and the header
// factory is still there when the last static object is destroyed. CI also builds this
// suite against the static library, where this file's initialisers run before the
// library's own.

#include <mime/KNMime.h>

#include <gtest/gtest.h>
#include <tests/TestSupport.h>

#include <cstdio>
#include <cstdlib>

namespace {

// Destroyed after everything made later, the header factory included (it is first used by
// `early` below): its destructor makes headers and ends the process with status 1 when they
// do not print as they should.
struct LateUse {
    ~LateUse()
    {
        const KNCString printed = outcome([] {
            return KNMimeVersionHeader().asString() + "|" +
                   KNMimeContentTypeHeader(KNMimeTextType("html", "utf-8")).asString();
        });
        if (printed != "MIME-Version: 1.0|Content-Type: text/html; charset=\"utf-8\"") {
            std::fprintf(stderr, "header made by a static destructor: %s\n", printed.c_str());
            std::_Exit(1);
        }
    }
} late;

// What the library gives during this file's static initialisation.
struct EarlyUse {
    KNCString constants;
    KNCString decoded;
    KNCString headers;

    EarlyUse()
    {
        const KNCString named[] = {KNMimeContentDescriptionHeader::Label, KNMimeContentDispositionHeader::Label,
            KNMimeContentIdHeader::Label, KNMimeContentLocationHeader::Label,
            KNMimeContentTransferEncodingHeader::Label, KNMimeContentTypeHeader::Label, KNMimeVersionHeader::Label,
            KNMimeContentDisposition::Filename, KNMimeMultipartType::Multipart, KNMimeMultipartType::Mixed,
            KNMimeMultipartType::Boundary, KNMimeMultipartRelatedType::Related, KNMimeMultipartRelatedType::Type,
            KNMimeMultipartRelatedType::Start, KNMimeMultipartRelatedType::StartInfo, KNMimeTextType::Text,
            KNMimeTextType::Plain, KNMimeTextType::Charset, KNMimeUtils::QuotedPrintable, KNMimeUtils::Base64,
            KNMimeUtils::SevenBit, KNMimeUtils::EightBit, KNMimeUtils::Binary, KNMimePartImp::CRLF,
            KNMimeMultipartImp::CRLF, KNMimeMultipartImp::boundaryMarker};
        for (const KNCString& text : named)
            constants += text + "|";
        decoded = outcome([] { return KNMimeUtils::decode("aGk=", "base64") + KNMimeUtils::decode("a=3Db", "Quoted-Printable"); });
        headers = outcome([] {
            KNMimeMultipart multipart(KNMimeMultipartType("related", "b"));
            multipart.insertPart(KNMimePart(KNMimeTextType()));
            return KNMimeVersionHeader().asString() + "\r\n" + multipart.asString();
        });
    }
} early;

TEST(StaticLifetime, NamedConstantsAndHeadersWorkInStaticInitialisers)
{
    EXPECT_EQ(early.constants, "Content-Description|Content-Disposition|Content-ID|Content-Location|"
                               "Content-Transfer-Encoding|Content-Type|MIME-Version|filename|multipart|mixed|"
                               "boundary|related|type|start|start_info|text|plain|charset|quoted-printable|"
                               "base64|7bit|8bit|binary|\r\n|\r\n|--|");
    EXPECT_EQ(early.decoded, "hia=b");
    EXPECT_EQ(early.headers, "MIME-Version: 1.0\r\n"
                             "Content-Type: multipart/related; boundary=\"b\"\r\n\r\n"
                             "--b\r\nContent-Type: text/plain\r\n\r\n\r\n--b--\r\n");
}

} // namespace
