// Whole messages end to end: a tree built through constructors and setters, realistic messages
// parsed and printed to a fixed point, and the code of the README tour.

#include <mime/KNMime.h>

#include <gtest/gtest.h>
#include <tests/TestSupport.h>

#include <iostream>
#include <string>

namespace {

// Messages as mail programs write them: folded headers, encoded words, comments, lower-case
// labels, 8-bit and base64 bodies, a headerless part, an epilogue.
const KNCString plainMessage =
    "Received: from mail.example.org (mail.example.org [192.0.2.10])\r\n"
    "\tby mx.example.net; Tue, 11 Jun 2024 09:12:44 +0200\r\n"
    "Subject: =?UTF-8?Q?Gr=C3=BC=C3=9Fe?= aus =?UTF-8?B?QmVybGlu?=\r\n"
    "MIME-Version: 1.0 (produced by hand)\r\n"
    "Content-Type: text/plain; charset=utf-8; format=flowed\r\n"
    "Content-Transfer-Encoding: quoted-printable\r\n\r\n"
    "Viele Gr=C3=BC=C3=9Fe aus Berlin. Die Konferenz=\r\n beginnt morgen.\r\n";

const KNCString mixedMessage =
    "Subject: =?UTF-8?B?UXVhcnRhbHNiZXJpY2h0IGbDvHIgUTI=?=\r\n"
    "MIME-Version: 1.0\r\n"
    "Content-Type: multipart/mixed; boundary=\"=_outer_5f3a\"\r\n\r\n"
    "This is a multi-part message in MIME format.\r\n"
    "--=_outer_5f3a\r\n"
    "Content-Type: multipart/alternative; boundary=\"=_inner_77c1\"\r\n\r\n"
    "--=_inner_77c1\r\n"
    "Content-Type: text/plain; charset=\"utf-8\"\r\n"
    "Content-Transfer-Encoding: quoted-printable\r\n\r\n"
    "Der Bericht f=C3=BCr Q2 h=C3=A4ngt an.\r\n"
    "--=_inner_77c1\r\n"
    "Content-Type: text/html; charset=\"utf-8\"\r\n\r\n"
    "<p>Der Bericht f&uuml;r Q2 h&auml;ngt an.</p>\r\n"
    "--=_inner_77c1--\r\n\r\n"
    "--=_outer_5f3a\r\n"
    "Content-Type: application/pdf; name=\"=?UTF-8?B?w5xiZXJzaWNodC5wZGY=?=\"\r\n"
    "Content-Transfer-Encoding: base64\r\n"
    "Content-Disposition: attachment; filename=\"=?UTF-8?B?w5xiZXJzaWNodC5wZGY=?=\"\r\n\r\n"
    "JVBERi0xLjQKJSVFT0YK\r\n"
    "--=_outer_5f3a--\r\n"
    "Epilogue text that printing drops.\r\n";

const KNCString forwardedMessage =
    "from: dave@example.net\r\n"
    "content-type: Multipart/Mixed (with a comment);\r\n\tboundary=fwd\r\n\r\n"
    "--fwd\r\n\r\nSee the minutes below. Gr\xfc\xdf" "e, Dave\r\n"
    "--fwd\r\nContent-Type: message/rfc822\r\nContent-ID: <minutes@example.net>\r\n\r\n"
    "From: erin@example.net\r\nSubject: minutes\r\n\r\n1. Budget approved.\r\n"
    "--fwd--\r\n";

constexpr auto parsed = &parsedAs<KNMimePart>;

// --- the code of the README tour ------------------------------------------------------

// The media type of a part, as "type/subtype"; text/plain when it has no Content-Type.
KNCString mediaTypeOf(const KNMimePart& part)
{
    const std::size_t i = part.findHeader(KNMimeContentTypeHeader::Label, 0);
    if (i == KNCString::npos)
        return "text/plain";
    const KNMimeContentType type = KNMimeContentTypeHeader(part.getHeader(i)).getContentType();
    return type.getMediaType() + "/" + type.getSubType();
}

void printTree(const KNMimePart& part, int depth)
{
    std::cout << std::string(2 * depth, ' ') << mediaTypeOf(part) << '\n';
    if (part.isMultipart()) {
        const KNMimeMultipart multipart(part); // shares the body: nothing is copied
        for (std::size_t i = 0; i < multipart.getPartCount(); ++i)
            printTree(multipart.getPart(i), depth + 1);
    }
}

// A header value with its encoded words decoded (the bytes stay in their charset).
KNCString decodeHeaderValue(const KNCString& value)
{
    KNCString decoded;
    for (const KNCString& piece : KNMimeUtils::tokenizeHeader(value, false)) {
        KNCString charset;
        decoded += KNMimeUtils::headerDecode(piece, charset); // plain runs come back as they are
    }
    return decoded;
}

} // namespace

TEST(Message, BuiltTreePrintsAndParsesBackEqual)
{
    KNMimeMultipart message(KNMimeMultipartType("mixed", "outer-7Qx"));
    message.insertHeaderAt(0, KNMimeVersionHeader());
    message.insertHeaderAt(0, KNMimeGenericHeader("Subject", KNMimeUtils::headerEncode("Grüße", "utf-8", "Q")));
    message.setPreamble("This is a multi-part message in MIME format.");

    KNMimeMultipart alternative(KNMimeMultipartType("alternative", "inner-2Wm"));
    KNMimePart plain{KNMimeTextType("plain", "utf-8")};
    plain.insertHeader(KNMimeContentTransferEncodingHeader(KNMimeUtils::QuotedPrintable));
    plain.setBody(KNMimeUtils::encodeQuotedPrintable("Grüße,\r\nder Bericht hängt an.\r\n"));
    KNMimePart html{KNMimeTextType("html", "utf-8")};
    html.setBody("<p>Gr&uuml;&szlig;e</p>");
    alternative.insertPart(plain);
    alternative.insertPart(html);
    message.insertPart(alternative);

    KNCString pdf(54 * 40, '\0'); // a whole number of base64 lines: the body ends in CRLF
    for (std::size_t i = 0; i < pdf.size(); ++i)
        pdf[i] = static_cast<char>(i * 7 + i / 256);
    KNMimePart attachment{KNMimeContentType("application", "pdf", KNMimeParameterList())};
    attachment.insertHeader(KNMimeContentTransferEncodingHeader(KNMimeUtils::Base64));
    attachment.insertHeader(KNMimeContentDispositionHeader(KNMimeContentDisposition("attachment", "report.pdf")));
    attachment.setBody(KNMimeUtils::encode(pdf, KNMimeUtils::Base64));
    message.insertPartAt(0, attachment);
    message.insertPartAt(2, KNMimePart(KNMimeTextType("plain", ""))); // empty body: has a header

    const KNCString printed = message.asString();
    const KNMimePart back = parsed(printed);
    EXPECT_TRUE(back == message) << printed;
    EXPECT_EQ(back.asString(), printed);

    const KNMimeMultipart top(back);
    ASSERT_EQ(top.getPartCount(), 3u);
    EXPECT_EQ(KNMimeUtils::decode(top.getPart(0).getBody(), "base64"), pdf);
    const KNMimeMultipart inner(top.getPart(1));
    EXPECT_EQ(KNMimeUtils::decode(inner.getPart(0).getBody(), "QUOTED-PRINTABLE"), "Grüße,\r\nder Bericht hängt an.\r\n");

    // A change deep inside, made through fetched handles, shows in the printed message.
    inner.getPart(1).setBody("<p>changed</p>");
    EXPECT_NE(back.asString().find("\r\n\r\n<p>changed</p>\r\n--inner-2Wm--\r\n"), KNCString::npos);
    EXPECT_FALSE(back == message);
}

TEST(Message, RealisticMessagesReachAFixedPoint)
{
    for (const KNCString& text : {plainMessage, mixedMessage, forwardedMessage}) {
        const KNMimePart first = parsed(text);
        const KNCString printed = first.asString();
        const KNMimePart second = parsed(printed);
        EXPECT_TRUE(second == first) << text;
        EXPECT_EQ(second.asString(), printed);
    }
    // A message already in the printed form comes back byte for byte, less its epilogue.
    EXPECT_EQ(parsed(mixedMessage).asString(), mixedMessage.substr(0, mixedMessage.find("Epilogue")));
}

TEST(Message, FailedParsesLeaveMessagesAndTheirSharersUntouched)
{
    KNMimePart message = parsed(mixedMessage);
    const KNMimePart sharer = message;
    const KNMimePart nested = KNMimeMultipart(message).getPart(0);
    const KNCString before = message.asString();

    const std::size_t outer = mixedMessage.find("=_outer_5f3a");
    for (const KNCString& bad : {KNMimeUtils::replaceLineDelimiter(mixedMessage, "\n"),
                                 mixedMessage.substr(0, mixedMessage.find("text/html")), // inside a nested part
                                 KNCString(mixedMessage).replace(outer, 12, ""),          // empty boundary
                                 KNCString(mixedMessage).replace(outer, 12, "=_missing___")})
        EXPECT_THROW(message.fromString(bad), KNMimeError);
    EXPECT_TRUE(message.sharesBodyWith(sharer));
    EXPECT_EQ(message.asString(), before);
    EXPECT_TRUE(KNMimeMultipart(message).getPart(0).sharesBodyWith(nested));

    // A successful parse rebinds only this handle.
    message.fromString(plainMessage);
    EXPECT_FALSE(message.sharesBodyWith(sharer));
    EXPECT_EQ(sharer.asString(), before);
}

TEST(Message, TourCode)
{
    // Parsing a message and walking its parts.
    KNMimePart message;
    message.fromString(mixedMessage);
    testing::internal::CaptureStdout();
    printTree(message, 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "multipart/mixed\n  multipart/alternative\n    text/plain\n    text/html\n  application/pdf\n");

    // Reading typed headers and decoding a body.
    const KNMimeMultipart mixed(message);
    const KNMimePart attachment = mixed.getPart(1);
    const KNMimeContentDispositionHeader disposition(
        attachment.getHeader(attachment.findHeader(KNMimeContentDispositionHeader::Label, 0)));
    const KNMimeContentTransferEncodingHeader encoding(
        attachment.getHeader(attachment.findHeader(KNMimeContentTransferEncodingHeader::Label, 0)));
    const KNCString filename = decodeHeaderValue(disposition.getContentDisposition().getFilename());
    const KNCString bytes = KNMimeUtils::decode(attachment.getBody(), encoding.getEncoding());
    EXPECT_EQ(filename, "Übersicht.pdf");
    EXPECT_EQ(bytes, "%PDF-1.4\n%%EOF\n");

    // Building a multipart message with an attachment.
    const KNCString pdfBytes = bytes;
    KNMimeMultipart report(KNMimeMultipartType(KNMimeMultipartType::Mixed, "")); // boundary generated
    report.insertHeaderAt(0, KNMimeVersionHeader());
    report.insertHeaderAt(0, KNMimeGenericHeader("Subject", "Quarterly report"));

    KNMimePart text(KNMimeTextType("plain", "utf-8"));
    text.setBody("Hello,\r\nthe report is attached.\r\n");
    report.insertPart(text);

    KNMimePart pdf(KNMimeContentType("application", "pdf", KNMimeParameterList()));
    pdf.insertHeader(KNMimeContentTransferEncodingHeader(KNMimeUtils::Base64));
    pdf.insertHeader(KNMimeContentDispositionHeader(KNMimeContentDisposition("attachment", "report.pdf")));
    pdf.setBody(KNMimeUtils::encode(pdfBytes, KNMimeUtils::Base64));
    report.insertPart(pdf);

    testing::internal::CaptureStdout();
    std::cout << report.asString();
    const KNCString printed = testing::internal::GetCapturedStdout();
    EXPECT_EQ(printed.substr(0, 52), "Subject: Quarterly report\r\nMIME-Version: 1.0\r\nConten");
    KNMimePart copy;
    copy.fromString(report.asString());
    EXPECT_TRUE(copy == report);
    EXPECT_EQ(copy.asString(), printed);
}
