// Lists the attachments of a message: path, file name, media type and decoded size.
//
//     knmime_list_attachments examples/sample.eml

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

    for (const KNMimeMessageView::Attachment& a : KNMimeMessageView(message).attachments())
        std::cout << a.path << "  " << a.filename << "  " << a.mediaType << "  " << a.decodedSize << " bytes\n";
}
