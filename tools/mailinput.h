#ifndef KN_TOOLS_MAILINPUT_H
#define KN_TOOLS_MAILINPUT_H

// The input of the commands that read mail: one message, or the messages of an mbox, each
// read with the forgiving reader, and the lookups the commands make in what it read.

#include "files.h"

#include <mail/KNMimeMail.h>
#include <mail/KNMimeReader.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

// One message of the input as the reader read it.
struct Mail {
    KNCString source;        // names it in messages: "a.eml", "box.mbox message 3"
    std::size_t number = 0;  // 1-based place in an mbox; 0 for a file of one message
    std::string_view text;   // the bytes the reader read; defect and entity offsets count in it
    KNMimeReadResult result;
};

// A file of mail: FILE, "-" for standard input, or the bundled sample message when the name
// is empty. A file that starts with an mbox "From " line and holds more than one such
// separator is an mbox, read message by message; anything else is one message.
class MailInput {
public:
    explicit MailInput(const KNCString& file);

    bool isMbox() const { return mbox_; }
    std::size_t size() const { return bytes_.size(); } // bytes in the whole input
    std::size_t count() const { return texts_.size(); }
    // Reads message `index` (0-based).
    Mail read(std::size_t index) const;

private:
    KNCString name_;
    std::unique_ptr<InputFile> file_; // none for the sample message
    std::string_view bytes_;
    bool mbox_ = false;
    std::vector<KNCString> texts_; // the messages of an mbox; a single message is bytes_
};

// The entity at the path as the user writes it ("." or "2.1"); DataError naming the file and
// the path when the message has no such part.
KNMimeReadResult::Entity entityAt(const Mail& mail, const KNCString& userPath);

// A reader path ("" for the message) as the user writes it ("." for the message).
KNCString shownPath(const KNCString& readerPath);

// The file name and the entity's path (or the file name alone for the message), which starts
// an error message.
KNCString where(const Mail& mail, const KNCString& readerPath);

// The bundled sample message (examples/sample.eml, compiled in).
std::string_view sampleMessage();

#endif
