#include "mailinput.h"

#include "commands.h"
#include "files.h"
#include "partpath.h"

#include <mail/KNMimeMbox.h>

namespace {

bool startsWithFromLine(std::string_view bytes)
{
    return bytes.substr(0, 5) == "From ";
}

} // namespace

MailInput::MailInput(const KNCString& file)
    : name_(file.empty() ? KNCString("the sample message") : file == "-" ? KNCString("standard input") : file)
    , file_(file.empty() ? nullptr : std::make_unique<InputFile>(file))
    , bytes_(file_ ? file_->bytes() : sampleMessage())
{
    if (startsWithFromLine(bytes_)) {
        std::vector<KNMimeMbox::Message> messages = KNMimeMbox::split(bytes_, KNMimeMbox::Format::Mboxo);
        if (messages.size() > 1) {
            mbox_ = true;
            texts_.reserve(messages.size());
            for (KNMimeMbox::Message& message : messages)
                texts_.push_back(std::move(message.text));
            return;
        }
    }
    texts_.emplace_back(); // one message: the bytes themselves, not a copy
}

Mail MailInput::read(std::size_t index) const
{
    Mail mail;
    mail.text = mbox_ ? std::string_view(texts_.at(index)) : bytes_;
    mail.number = mbox_ ? index + 1 : 0;
    mail.source = mbox_ ? name_ + " message " + std::to_string(index + 1) : name_;
    try {
        mail.result = KNMimeReader().read(mail.text);
    } catch (const KNxmsg& error) { // the reader's size limit
        throw DataError(mail.source + ": " + error.why());
    }
    return mail;
}

KNMimeReadResult::Entity entityAt(const Mail& mail, const KNCString& userPath)
{
    const PartPath path = parsePartPath(userPath); // a bad path is a usage error
    const KNCString readerPath = path.empty() ? KNCString() : formatPartPath(path);
    std::optional<KNMimeReadResult::Entity> entity = mail.result.findEntity(readerPath);
    if (!entity)
        throw DataError(mail.source + ": no part " + formatPartPath(path) + " (tree lists the parts)");
    return *entity;
}

KNCString shownPath(const KNCString& readerPath)
{
    return readerPath.empty() ? KNCString(".") : readerPath;
}

KNCString where(const Mail& mail, const KNCString& readerPath)
{
    if (readerPath.empty())
        return mail.source + ": ";
    return mail.source + ", part " + readerPath + ": ";
}
