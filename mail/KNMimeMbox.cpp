#include <mail/KNMimeMbox.h>

namespace {

constexpr std::string_view from = "From ";
constexpr std::size_t npos = std::string_view::npos;

bool isEmptyLine(std::string_view line)
{
    return line.empty() || line == "\r";
}

// Appends `line` (with its line end) to `out`, removing one ">" from a ">+From " line.
void appendUnquoted(KNCString& out, std::string_view line)
{
    const std::size_t quotes = line.find_first_not_of('>');
    if (quotes != 0 && quotes != npos && line.substr(quotes, from.size()) == from)
        line.remove_prefix(1);
    out.append(line);
}

} // namespace

std::vector<KNMimeMbox::Message> KNMimeMbox::split(std::string_view mailbox, Format format)
{
    std::vector<Message> messages;
    // Each message's text runs from its start to the line end before the next separator;
    // the empty line that precedes a separator belongs to the mailbox, not the message.
    std::size_t textStart = 0;
    std::size_t envelopeStart = 0;
    bool haveEnvelope = false;
    bool previousEmpty = true;
    std::size_t previousLineStart = 0;

    const auto close = [&](std::size_t end) {
        std::size_t stop = end;
        if (stop > textStart && previousEmpty)
            stop = previousLineStart; // drop the empty separator line
        const std::string_view body = mailbox.substr(textStart, stop - textStart);
        if (!haveEnvelope && body.find_first_not_of(" \t\r\n") == npos)
            return;
        Message message{envelopeStart, KNCString(), KNCString()};
        if (haveEnvelope) {
            std::string_view line = mailbox.substr(envelopeStart, textStart - envelopeStart);
            while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
                line.remove_suffix(1);
            message.envelope = KNCString(line);
        }
        if (format == Format::Mboxrd) {
            message.text.reserve(body.size());
            for (std::size_t p = 0; p < body.size();) {
                const std::size_t nl = body.find('\n', p);
                const std::size_t next = nl == npos ? body.size() : nl + 1;
                appendUnquoted(message.text, body.substr(p, next - p));
                p = next;
            }
        } else {
            message.text = KNCString(body);
        }
        messages.push_back(std::move(message));
    };

    for (std::size_t p = 0; p < mailbox.size();) {
        const std::size_t nl = mailbox.find('\n', p);
        const std::size_t next = nl == npos ? mailbox.size() : nl + 1;
        const std::string_view line = mailbox.substr(p, (nl == npos ? mailbox.size() : nl) - p);
        if (previousEmpty && line.substr(0, from.size()) == from) {
            close(p);
            envelopeStart = p;
            textStart = next;
            haveEnvelope = true;
            previousEmpty = false;
        } else {
            previousEmpty = isEmptyLine(line);
            previousLineStart = p;
        }
        p = next;
    }
    close(mailbox.size());
    return messages;
}
