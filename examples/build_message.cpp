// Builds a message with a UTF-8 subject, text and HTML bodies and an attachment, and prints it
// ready to send.
//
//     knmime_build_message > message.eml

#include <mail/KNMimeMail.h>

#include <iostream>

int main()
{
    const KNCString pdfBytes = "%PDF-1.4 ...";
    // readme: build-message
    KNMimeMessageBuilder builder;
    builder.setFrom(KNMimeAddressList::parse("Marta Nowak <marta@example.org>"))
        .setTo(KNMimeAddressList::parse("Team <team@example.org>"))
        .setSubject("Übersicht Q2")
        .setText("Hallo Team,\nanbei die Übersicht.\n")
        .setHtml("<p>Hallo Team,<br>anbei die Übersicht.</p>")
        .addAttachment("Übersicht.pdf", "application/pdf", pdfBytes);
    std::cout << builder.toString(); // CRLF text, every line within the limits
    // readme: end
}
