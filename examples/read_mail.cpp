// Reads a mail file as stored (LF or CRLF line ends, an mbox "From " line, the flaws real
// senders make) and prints every part with its path, then what the reader repaired.
#include <mail/KNMimeReader.h>
#include <mime/KNMime.h>

#include <fstream>
#include <iostream>
#include <iterator>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: read_mail FILE\n";
        return 2;
    }
    std::ifstream file(argv[1], std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());

    // readme: read-mail
    const KNMimeReadResult result = KNMimeReader().read(bytes); // never throws for bad mail
    for (const KNMimeReadResult::Entity& entity : result.getEntities()) {
        const KNMimePart& part = entity.part;
        const std::size_t i = part.findHeader(KNMimeContentTypeHeader::Label, 0);
        std::cout << (entity.path.empty() ? "message" : entity.path) << "  "
                  << (i == KNCString::npos ? "(no Content-Type)" : part.getHeader(i).asString()) << '\n';
    }
    for (const KNMimeDefect& defect : result.getDefects())
        std::cout << "defect " << defect.kindName() << " at byte " << defect.offset << ": " << defect.text << '\n';
    // readme: end
}
