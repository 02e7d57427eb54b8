// Prints the text of a message in UTF-8 (its plain text, or its HTML when it has no plain text).
//
//     knmime_read_text examples/sample.eml

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

    std::cout << KNMimeMessageView(message).mainText().value_or("(no text)") << '\n';
}
