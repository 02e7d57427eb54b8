// Shows who wrote a message to whom and about what: From, To and Subject in UTF-8.
//
//     knmime_show_headers examples/sample.eml

#include <mail/KNMimeMail.h>

#include <fstream>
#include <iostream>
#include <sstream>

int main(int argc, char* argv[])
{
    std::ifstream file(argc > 1 ? argv[1] : "", std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    KNMimePart message;
    message.fromString(text.str());

    for (const char* label : {"From", "To"}) {
        for (const KNMimeAddress& a : KNMimeAddressList::fromHeader(message, label).value_or(KNMimeAddressList()))
            std::cout << label << ": " << a.toDisplayString() << '\n';
    }
    std::cout << "Subject: " << KNMimeMessageView::headerText(message, "Subject").value_or("") << '\n';
}
