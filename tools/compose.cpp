// knmime compose: a message built from addresses, a subject, text and HTML files and
// attachments, written to standard output.

#include "commands.h"
#include "files.h"
#include "mediatypes.h"

#include <mail/KNMimeMail.h>

#include <iostream>

namespace {

// The last path component of `path`, the name a file travels under.
KNCString baseName(const KNCString& path)
{
    const std::size_t slash = path.find_last_of('/');
    return slash == KNCString::npos ? path : path.substr(slash + 1);
}

KNMimeAddressList addressesOf(const Invocation& invocation, const char* option)
{
    KNMimeAddressList list;
    for (const KNCString& value : invocation.all(option))
        for (const KNMimeAddress& address : KNMimeAddressList::parse(value))
            list.add(address);
    return list;
}

} // namespace

int runCompose(const Invocation& invocation)
{
    for (const char* required : {"--from", "--to", "--subject"})
        if (invocation.all(required).empty())
            throw UsageError(KNCString("compose needs ") + required);
    const KNMimeAddressList from = addressesOf(invocation, "--from");
    if (from.empty() || !from.isComplete())
        throw UsageError("--from holds no address that can be read");

    KNMimeMessageBuilder builder;
    builder.setFrom(from).setTo(addressesOf(invocation, "--to")).setSubject(invocation.value("--subject"));
    if (!invocation.all("--cc").empty())
        builder.setCc(addressesOf(invocation, "--cc"));
    if (!invocation.all("--reply-to").empty())
        builder.setReplyTo(addressesOf(invocation, "--reply-to"));
    if (!invocation.all("--text").empty())
        builder.setText(readInput(invocation.value("--text")));
    if (!invocation.all("--html").empty())
        builder.setHtml(readInput(invocation.value("--html")));

    // Files in command-line order; a --type gives the media type of the file named next.
    KNCString type;
    for (const auto& [option, value] : invocation.values) {
        if (option == "--type") {
            type = value;
            continue;
        }
        if (option != "--attach" && option != "--inline")
            continue;
        const KNCString name = baseName(value);
        const KNCString mediaType = type.empty() ? mediaTypeForFile(name) : type;
        type.clear();
        if (option == "--attach")
            builder.addAttachment(name, mediaType, readInput(value));
        else
            builder.addInline(name, mediaType, readInput(value), name); // the HTML says cid:NAME
    }
    if (!type.empty())
        throw UsageError("--type names no file after it");
    std::cout << builder.toString();
    return 0;
}
