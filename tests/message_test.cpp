// Whole messages end to end: trees built through constructors and setters, realistic messages
// parsed and printed to a fixed point, typed headers and decoded bodies read from them, and
// the code of the README tour.

#include <mime/KNMime.h>

#include <gtest/gtest.h>

#include <iostream>
#include <string>
#include <vector>

void PrintTo(const KNMimePart& part, std::ostream* os)
{
    try {
        *os << '"' << part.asString() << '"';
    } catch (const KNxmsg& e) {
        *os << "(unprintable: " << e.why() << ")";
    }
}

namespace {

// Messages as mail programs write them (CRLF throughout).
const KNCString plainMessage =
    "Return-Path: <alice@example.org>\r\n"
    "Received: from mail.example.org (mail.example.org [192.0.2.10])\r\n"
    "\tby mx.example.net with ESMTPS id 4Tq9Lk2x\r\n"
    "\tfor <bob@example.net>; Tue, 11 Jun 2024 09:12:44 +0200\r\n"
    "From: =?UTF-8?Q?Al=C3=AFce?= <alice@example.org>\r\n"
    "To: Bob <bob@example.net>\r\n"
    "Subject: =?UTF-8?B?R3LDvMOfZSBhdXMgQmVybGlu?=\r\n"
    "Date: Tue, 11 Jun 2024 09:12:40 +0200\r\n"
    "Message-ID: <20240611091240.1234@example.org>\r\n"
    "MIME-Version: 1.0 (produced by hand)\r\n"
    "Content-Type: text/plain; charset=utf-8; format=flowed\r\n"
    "Content-Transfer-Encoding: quoted-printable\r\n"
    "\r\n"
    "Hallo Bob,\r\n"
    "\r\n"
    "viele Gr=C3=BC=C3=9Fe aus Berlin. Das Wetter ist sch=C3=B6n, und die Konferenz=\r\n"
    " beginnt morgen um neun.\r\n"
    "\r\n"
    "-- \r\n"
    "Alice\r\n";

const KNCString alternativeMessage =
    "From: newsletter@example.com\r\n"
    "To: reader@example.net\r\n"
    "Subject: June news\r\n"
    "MIME-Version: 1.0\r\n"
    "Content-Type: multipart/alternative;\r\n"
    " boundary=\"----=_Part_17_1718095960\"\r\n"
    "\r\n"
    "------=_Part_17_1718095960\r\n"
    "Content-Type: text/plain; charset=us-ascii\r\n"
    "Content-Transfer-Encoding: 7bit\r\n"
    "\r\n"
    "June news\r\n"
    "=========\r\n"
    "\r\n"
    "* The garden opens on Saturday.\r\n"
    "------=_Part_17_1718095960\r\n"
    "Content-Type: text/html; charset=us-ascii\r\n"
    "Content-Transfer-Encoding: 7bit\r\n"
    "\r\n"
    "<html><body><h1>June news</h1><ul><li>The garden opens on Saturday.</li></ul></body></html>\r\n"
    "------=_Part_17_1718095960--\r\n";

const KNCString mixedMessage =
    "From: Carol <carol@example.org>\r\n"
    "To: team@example.org\r\n"
    "Subject: =?UTF-8?B?UXVhcnRhbHNiZXJpY2h0IGbDvHIgUTI=?=\r\n"
    "MIME-Version: 1.0\r\n"
    "Content-Type: multipart/mixed; boundary=\"=_outer_5f3a\"\r\n"
    "\r\n"
    "This is a multi-part message in MIME format.\r\n"
    "--=_outer_5f3a\r\n"
    "Content-Type: multipart/alternative; boundary=\"=_inner_77c1\"\r\n"
    "\r\n"
    "--=_inner_77c1\r\n"
    "Content-Type: text/plain; charset=\"utf-8\"\r\n"
    "Content-Transfer-Encoding: quoted-printable\r\n"
    "\r\n"
    "Hallo zusammen, der Bericht f=C3=BCr Q2 h=C3=A4ngt an.\r\n"
    "--=_inner_77c1\r\n"
    "Content-Type: text/html; charset=\"utf-8\"\r\n"
    "Content-Transfer-Encoding: quoted-printable\r\n"
    "\r\n"
    "<p>Hallo zusammen, der Bericht f=C3=BCr Q2 h=C3=A4ngt an.</p>\r\n"
    "--=_inner_77c1--\r\n"
    "\r\n"
    "--=_outer_5f3a\r\n"
    "Content-Type: application/pdf; name=\"=?UTF-8?B?w5xiZXJzaWNodC5wZGY=?=\"\r\n"
    "Content-Transfer-Encoding: base64\r\n"
    "Content-Disposition: attachment; filename=\"=?UTF-8?B?w5xiZXJzaWNodC5wZGY=?=\"\r\n"
    "\r\n"
    "JVBERi0xLjQKJcfsj6IKMSAwIG9iago8PC9UeXBlL0NhdGFsb2c+PgplbmRvYmoKdHJhaWxl\r\n"
    "cgo8PC9Sb290IDEgMCBSPj4KJSVFT0YK\r\n"
    "--=_outer_5f3a--\r\n"
    "Epilogue text that printing drops.\r\n";

const KNCString relatedMessage =
    "From: shop@example.com\r\n"
    "Subject: Your order\r\n"
    "MIME-Version: 1.0\r\n"
    "Content-Type: multipart/related; type=\"text/html\"; start=\"<body@example.com>\";\r\n"
    "\tboundary=rel-0042\r\n"
    "\r\n"
    "--rel-0042\r\n"
    "Content-Type: text/html; charset=iso-8859-1\r\n"
    "Content-ID: <body@example.com>\r\n"
    "Content-Transfer-Encoding: quoted-printable\r\n"
    "\r\n"
    "<html><body><img src=3D\"cid:logo@example.com\"> Vielen Dank f=FCr Ihre Bestellung!</body></html>\r\n"
    "--rel-0042\r\n"
    "Content-Type: image/png\r\n"
    "Content-ID: <logo@example.com>\r\n"
    "Content-Location: logo.png\r\n"
    "Content-Description: Shop logo\r\n"
    "Content-Disposition: inline; filename=logo.png\r\n"
    "Content-Transfer-Encoding: base64\r\n"
    "\r\n"
    "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR4nGNgYGD4DwABBAEAwS2OUAAAAABJRU5ErkJggg==\r\n"
    "--rel-0042--\r\n";

const KNCString forwardedMessage =
    "from: dave@example.net\r\n"
    "subject: Fwd: minutes\r\n"
    "mime-version: 1.0\r\n"
    "content-type: Multipart/Mixed (with a comment); boundary=fwd\r\n"
    "X-Mailer: handwritten 0.1\r\n"
    "\r\n"
    "--fwd\r\n"
    "\r\n"
    "See the forwarded minutes below.\r\n"
    "--fwd\r\n"
    "Content-Type: message/rfc822\r\n"
    "Content-Disposition: inline\r\n"
    "\r\n"
    "From: erin@example.net\r\n"
    "Subject: minutes\r\n"
    "Content-Type: text/plain\r\n"
    "\r\n"
    "1. Budget approved.\r\n"
    "2. Next meeting on Monday.\r\n"
    "--fwd--\r\n";

KNMimePart parsed(const KNCString& text)
{
    KNMimePart part;
    part.fromString(text);
    return part;
}

// The first header with this label, converted to its typed handle.
template <class Header>
Header header(const KNMimePart& part)
{
    return Header(part.getHeader(part.findHeader(Header::Label, 0)));
}

KNCString binaryData(std::size_t size)
{
    KNCString data(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        data[i] = static_cast<char>((i * 7 + i / 256) & 0xff);
    return data;
}

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
    message.insertHeaderAt(0, KNMimeGenericHeader("From", "Alice <alice@example.org>"));
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

    const KNCString pdf = binaryData(54 * 40); // a whole number of base64 lines: ends in CRLF
    KNMimePart attachment{KNMimeContentType("application", "pdf", KNMimeParameterList())};
    attachment.insertHeader(KNMimeContentTransferEncodingHeader(KNMimeUtils::Base64));
    attachment.insertHeader(KNMimeContentDispositionHeader(KNMimeContentDisposition("attachment", "report.pdf")));
    attachment.insertHeader(KNMimeContentIdHeader("<report@example.org>"));
    attachment.setBody(KNMimeUtils::encode(pdf, KNMimeUtils::Base64));
    message.insertPartAt(0, attachment);
    message.insertPartAt(2, KNMimePart(KNMimeTextType("plain", ""))); // empty body: has a header

    const KNCString printed = message.asString();
    EXPECT_EQ(printed.rfind("\r\n--outer-7Qx--\r\n"), printed.size() - 17);
    EXPECT_NE(printed.find("This is a multi-part message in MIME format.\r\n--outer-7Qx\r\n"), KNCString::npos);

    const KNMimePart back = parsed(printed);
    EXPECT_EQ(back, message);
    EXPECT_EQ(message, back);
    EXPECT_EQ(back.asString(), printed);

    // Read it back through typed headers and decode the bodies.
    const KNMimeMultipart top(back);
    ASSERT_EQ(top.getPartCount(), 3u);
    EXPECT_EQ(KNMimeMultipartType(header<KNMimeContentTypeHeader>(top).getContentType()).getBoundary(), "outer-7Qx");
    EXPECT_EQ(header<KNMimeVersionHeader>(top).getMajorVersion(), 1u);
    EXPECT_EQ(decodeHeaderValue(KNMimeGenericHeader(top.getHeader(1)).getValue()), "Grüße");

    const KNMimePart file = top.getPart(0);
    EXPECT_EQ(header<KNMimeContentDispositionHeader>(file).getContentDisposition().getFilename(), "report.pdf");
    EXPECT_EQ(header<KNMimeContentIdHeader>(file).getId(), "<report@example.org>");
    EXPECT_EQ(KNMimeUtils::decode(file.getBody(), header<KNMimeContentTransferEncodingHeader>(file).getEncoding()), pdf);

    const KNMimeMultipart inner(top.getPart(1));
    ASSERT_EQ(inner.getPartCount(), 2u);
    EXPECT_EQ(KNMimeUtils::decode(inner.getPart(0).getBody(), "QUOTED-PRINTABLE"), "Grüße,\r\nder Bericht hängt an.\r\n");
    EXPECT_EQ(KNMimeTextType(header<KNMimeContentTypeHeader>(inner.getPart(1)).getContentType()).getCharset(), "utf-8");
    EXPECT_EQ(top.getPart(2).getBody(), "");

    // A change deep inside, made through fetched handles, shows in the printed message.
    inner.getPart(1).setBody("<p>changed</p>");
    EXPECT_NE(back.asString().find("\r\n\r\n<p>changed</p>\r\n--inner-2Wm--\r\n"), KNCString::npos);
    EXPECT_NE(back, message);
}

TEST(Message, RealisticMessagesReachAFixedPoint)
{
    const std::vector<KNCString> messages = {plainMessage, alternativeMessage, mixedMessage, relatedMessage,
                                             forwardedMessage};
    for (const KNCString& text : messages) {
        const KNMimePart first = parsed(text);
        const KNCString printed = first.asString();
        const KNMimePart second = parsed(printed);
        EXPECT_EQ(second, first) << text;
        EXPECT_EQ(second.asString(), printed) << text;
    }
    // A message already in the printed form comes back byte for byte, less its epilogue.
    EXPECT_EQ(parsed(mixedMessage).asString(), mixedMessage.substr(0, mixedMessage.find("Epilogue")));
}

TEST(Message, RealisticMessagesParseIntoTheExpectedTree)
{
    const KNMimePart plain = parsed(plainMessage);
    EXPECT_FALSE(plain.isMultipart());
    EXPECT_EQ(plain.getHeaderCount(), 10u); // the folded Received line is one header
    EXPECT_EQ(decodeHeaderValue(KNMimeGenericHeader(plain.getHeader(plain.findHeader("subject", 0))).getValue()),
              "Grüße aus Berlin");
    EXPECT_EQ(header<KNMimeVersionHeader>(plain).getMinorVersion(), 0u);
    const KNCString text = KNMimeUtils::decode(plain.getBody(), header<KNMimeContentTransferEncodingHeader>(plain).getEncoding());
    EXPECT_NE(text.find("viele Grüße aus Berlin. Das Wetter ist schön, und die Konferenz beginnt"), KNCString::npos);

    const KNMimeMultipart related(parsed(relatedMessage));
    const KNMimeMultipartRelatedType type(header<KNMimeContentTypeHeader>(related).getContentType());
    EXPECT_EQ(type.getStart(), "<body@example.com>");
    EXPECT_EQ(type.getBoundary(), "rel-0042");
    EXPECT_EQ(related.findPart(KNMimeContentIdHeader("<logo@example.com>"), 0), 1u);
    const KNMimePart logo = related.getPart(1);
    EXPECT_EQ(header<KNMimeContentLocationHeader>(logo).getURI(), "logo.png");
    EXPECT_EQ(header<KNMimeContentDescriptionHeader>(logo).getDescription(), "Shop logo");
    EXPECT_EQ(KNMimeUtils::decode(logo.getBody(), "base64").substr(1, 3), "PNG");

    const KNMimeMultipart forwarded(parsed(forwardedMessage));
    ASSERT_EQ(forwarded.getPartCount(), 2u);
    EXPECT_EQ(forwarded.getPart(0).getHeaderCount(), 0u);
    EXPECT_FALSE(forwarded.getPart(1).isMultipart()); // message/rfc822 stays a string body
    EXPECT_EQ(parsed(forwarded.getPart(1).getBody()).getBody(), "1. Budget approved.\r\n2. Next meeting on Monday.");
}

TEST(Message, FailedParsesLeaveMessagesAndTheirSharersUntouched)
{
    KNMimePart message = parsed(mixedMessage);
    const KNMimePart sharer = message;
    const KNMimePart nested = KNMimeMultipart(message).getPart(0);
    const KNCString before = message.asString();

    const KNCString lfOnly = KNMimeUtils::replaceLineDelimiter(mixedMessage, "\n");
    const KNCString truncated = mixedMessage.substr(0, mixedMessage.find("--=_inner_77c1\r\nContent-Type: text/html") + 20);
    KNCString noBoundary = mixedMessage;
    noBoundary.replace(noBoundary.find("boundary=\"=_outer_5f3a\""), 23, "boundary=\"\"");
    KNCString wrongBoundary = mixedMessage;
    wrongBoundary.replace(wrongBoundary.find("=_outer_5f3a"), 12, "=_missing___");

    EXPECT_THROW(message.fromString(lfOnly), KNMimeParseError);
    EXPECT_THROW(message.fromString(truncated), KNMimeParseError);
    EXPECT_THROW(message.fromString(noBoundary), KNMimeError);
    EXPECT_THROW(message.fromString(wrongBoundary), KNMimeParseError);
    EXPECT_TRUE(message.sharesBodyWith(sharer));
    EXPECT_EQ(message.asString(), before);
    EXPECT_TRUE(KNMimeMultipart(message).getPart(0).sharesBodyWith(nested));
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
    EXPECT_EQ(bytes.substr(0, 8), "%PDF-1.4");

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
