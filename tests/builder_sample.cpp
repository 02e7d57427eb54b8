// Writes one message built with KNMimeMessageBuilder to standard output, for other mail
// software (Python's email package in CTest) to read.
#include <mail/KNMimeMail.h>

#include <iostream>

int main()
{
    KNCString pdf;
    for (int i = 0; i < 3000; ++i)
        pdf += static_cast<char>((i * 37) & 0xff);
    KNMimeMessageBuilder builder;
    builder.setFrom(KNMimeAddressList::parse("Jos\xC3\xA9 Garc\xC3\xAD" "a <jose@example.org>"))
        .setTo(KNMimeAddressList::parse("Team <team@example.org>, \"Doe, Jane\" <jane@example.net>"))
        .setSubject("\xC3\x9C" "bersicht Q2 \xE2\x80\x93 bitte lesen, eine Betreffzeile, die l\xC3\xA4nger ist als eine Zeile")
        .setText("Hallo,\nanbei die \xC3\x9C" "bersicht.\n")
        .setHtml("<p>Hallo, <img src=\"cid:logo\"></p>\n");
    builder.addInline("logo.png", "image/png", pdf.substr(0, 100));
    builder.addAttachment("\xC3\x9C" "bersicht des zweiten Quartals mit sehr langem Namen f\xC3\xBCr alle.pdf",
                          "application/pdf", pdf);
    std::cout << builder.toString();
}
