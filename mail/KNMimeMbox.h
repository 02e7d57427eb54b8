#ifndef KN_MAIL_KNMIMEMBOX_H
#define KN_MAIL_KNMIMEMBOX_H

/// @file
/// Splitting a mailbox file into its messages.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>

#include <cstddef>
#include <string_view>
#include <vector>

/// Splits an mbox mailbox (messages each opened by a "From " line) into the messages, for
/// KNMimeReader to read one by one. Line ends may be LF or CRLF. Linear in the file size.
class KNMIME_EXPORT KNMimeMbox {
public:
    /// How "From " lines inside messages were protected when the file was written.
    enum class Format {
        Mboxo,  ///< only "From " was quoted as ">From ": nothing can be unquoted safely
        Mboxrd, ///< every ">*From " got one more ">": one is removed from each such line
    };

    /// One message of the mailbox.
    struct Message {
        std::size_t offset; ///< byte offset of its "From " line in the mailbox
        KNCString envelope; ///< the "From " line without its line end
        KNCString text;     ///< the message, without the "From " line and the blank line that ends it
    };

    /// The messages of `mailbox` in order. Text before the first "From " line (which a
    /// well-formed mailbox does not have) becomes a message of its own with an empty envelope
    /// unless it is blank. A "From " line starts a message when it opens the file or follows
    /// an empty line; anywhere else it stays in the message.
    static std::vector<Message> split(std::string_view mailbox, Format format = Format::Mboxo);
};

#endif
