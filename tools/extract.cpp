// extract: writes the bodies of parts to files, every attachment under its own name by
// default. Names come from the message, so they are made safe before they touch the disk.

#include "commands.h"
#include "files.h"
#include "mailinput.h"
#include "mediatypes.h"
#include "partinfo.h"

#include <mail/KNMimeMail.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <unistd.h>

namespace {

constexpr std::size_t MaxNameBytes = 255;        // the longest file name most file systems take
constexpr std::size_t LargeInput = 50u << 20;    // above this, extract reports its progress
constexpr std::size_t MaxExtensionBytes = 16;    // a longer "extension" is part of the stem

// The length of the longest prefix of `text` of at most `limit` bytes that ends on a UTF-8
// character boundary.
std::size_t utf8Prefix(std::string_view text, std::size_t limit)
{
    if (text.size() <= limit)
        return text.size();
    std::size_t end = limit;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xc0) == 0x80)
        --end;
    return end;
}

// Splits "report.pdf" into "report" and ".pdf"; a name without a short extension has none.
std::pair<KNCString, KNCString> splitExtension(const KNCString& name)
{
    const std::size_t dot = name.rfind('.');
    if (dot == KNCString::npos || dot == 0 || name.size() - dot > MaxExtensionBytes)
        return {name, KNCString()};
    return {name.substr(0, dot), name.substr(dot)};
}

// `stem` + `suffix` + `extension` cut to MaxNameBytes, taking the bytes from the stem.
KNCString joinName(const KNCString& stem, const KNCString& suffix, const KNCString& extension)
{
    const std::size_t room = MaxNameBytes - std::min(MaxNameBytes, suffix.size() + extension.size());
    return stem.substr(0, utf8Prefix(stem, room)) + suffix + extension;
}

// A file name from a message, safe to create inside the target folder: the last component
// of any path (separators '/' and '\'), control characters replaced by '_', no leading dots
// or blanks, no run of dots (so never ".."), at most 255 bytes. Empty when nothing is left.
KNCString safeFileName(std::string_view name)
{
    const std::size_t slash = name.find_last_of("/\\");
    if (slash != std::string_view::npos)
        name.remove_prefix(slash + 1);
    KNCString safe;
    safe.reserve(name.size());
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (safe.empty() && (c == '.' || c == ' '))
            continue;
        if (c == '.' && safe.back() == '.')
            continue;
        safe += byte < 0x20 || byte == 0x7f ? '_' : c;
    }
    const auto [stem, extension] = splitExtension(safe);
    return joinName(stem, KNCString(), extension);
}

// Creates `name` in `directory` without replacing anything: when the name is taken, the
// first free "stem (N).ext" is used. Writes `bytes` and returns the path written.
std::filesystem::path createFresh(const std::filesystem::path& directory, const KNCString& name,
                                  std::string_view bytes)
{
    const auto [stem, extension] = splitExtension(name);
    for (std::size_t number = 0;; ++number) {
        const KNCString candidate =
            number == 0 ? name : joinName(stem, " (" + std::to_string(number) + ')', extension);
        const std::filesystem::path path = directory / candidate;
        const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0666);
        if (fd < 0) {
            if (errno == EEXIST)
                continue;
            throw std::runtime_error("cannot create " + path.string() + ": " + std::strerror(errno));
        }
        while (!bytes.empty()) {
            const ssize_t written = ::write(fd, bytes.data(), bytes.size());
            if (written < 0 && errno == EINTR)
                continue;
            if (written <= 0) {
                const int error = errno;
                ::close(fd);
                throw std::runtime_error("cannot write " + path.string() + ": " + std::strerror(error));
            }
            bytes.remove_prefix(static_cast<std::size_t>(written));
        }
        if (::close(fd) != 0)
            throw std::runtime_error("cannot write " + path.string() + ": " + std::strerror(errno));
        return path;
    }
}

// Whether extract takes the leaf when no PATH is given: it names a file, is an attachment,
// or is no text.
bool isAttachment(const PartSummary& summary)
{
    return summary.filename || summary.disposition == KNCString("attachment") ||
           summary.type.compare(0, 5, "text/") != 0;
}

class Extractor {
public:
    explicit Extractor(const Invocation& invocation)
        : raw_(invocation.has("--raw")), directoryName_(invocation.value("-d", ".")), directory_(directoryName_.c_str())
    {
    }

    std::size_t written() const { return written_; }

    // The body of the part, decoded unless --raw asks for it as stored.
    KNCString bodyOf(const Mail& mail, const KNMimeReadResult::Entity& entity) const
    {
        if (entity.part.isMultipart()) {
            throw DataError(where(mail, entity.path) +
                            "is a multipart; extract writes single parts (tree lists them)");
        }
        return raw_ ? entity.part.getBody() : KNMimeBodyDecoder::decode(entity.part).data;
    }

    // Writes the part into the folder under its own name made safe, or one made up.
    void save(const Mail& mail, const KNMimeReadResult::Entity& entity, const PartSummary& summary)
    {
        const KNCString body = bodyOf(mail, entity);
        KNCString name = safeFileName(summary.filename.value_or(KNCString()));
        if (name.empty()) {
            name = mail.number ? "message-" + std::to_string(mail.number) + "-part-" : KNCString("part-");
            name += (entity.path.empty() ? KNCString("1") : entity.path) + extensionFor(summary.type);
        }
        if (written_ == 0) { // the folder is made when the first file goes into it
            std::error_code error;
            std::filesystem::create_directories(directory_, error);
            if (error)
                throw std::runtime_error("cannot create " + directoryName_ + ": " + error.message());
        }
        const std::filesystem::path path = createFresh(directory_, name, body);
        ++written_;
        std::cout << (directoryName_ == "." ? path.filename().string() : path.string()) << "  (";
        if (mail.number)
            std::cout << "message " << mail.number << ' ';
        std::cout << "part " << shownPath(entity.path) << ", " << body.size() << (body.size() == 1 ? " byte)\n" : " bytes)\n");
    }

    // Every attachment of the message. An attached message is saved whole: its own parts
    // are not entered.
    void saveAttachments(const Mail& mail)
    {
        KNCString inside; // the path prefix of the attached message last saved
        for (const KNMimeReadResult::Entity& entity : mail.result.getEntities()) {
            if (!inside.empty() && entity.path.compare(0, inside.size(), inside) == 0)
                continue;
            if (entity.part.isMultipart())
                continue;
            const PartSummary summary = summarize(entity.part, false);
            if (!isAttachment(summary))
                continue;
            save(mail, entity, summary);
            if (mail.result.getAttachedMessage(entity.part))
                inside = entity.path + '.';
        }
    }

private:
    bool raw_;
    KNCString directoryName_; // as the user wrote it, for the lines printed
    std::filesystem::path directory_;
    std::size_t written_ = 0;
};

} // namespace

int runExtract(const Invocation& invocation)
{
    const KNCString file = invocation.operands[0];
    const KNCStringList paths(invocation.operands.begin() + 1, invocation.operands.end());
    const KNCString output = invocation.value("-o");
    if (!output.empty() && paths.size() != 1)
        throw UsageError("-o writes one part: give exactly one PATH");

    const MailInput input(file);
    if (!output.empty()) {
        if (input.count() != 1)
            throw DataError(file + " is an mbox of " + std::to_string(input.count()) + " messages; -o writes one part of one message");
        const Mail mail = input.read(0);
        const KNMimeReadResult::Entity entity = entityAt(mail, paths[0]);
        writeOutput(output, Extractor(invocation).bodyOf(mail, entity));
        return 0;
    }

    Extractor extractor(invocation);
    const bool progress = input.isMbox() || input.size() > LargeInput;
    const bool terminal = progress && ::isatty(STDERR_FILENO);
    for (std::size_t i = 0; i < input.count(); ++i) {
        if (terminal)
            std::cerr << "\rknmime: message " << i + 1 << " of " << input.count() << std::flush;
        const Mail mail = input.read(i);
        if (paths.empty()) {
            extractor.saveAttachments(mail);
            continue;
        }
        for (const KNCString& path : paths) {
            const KNMimeReadResult::Entity entity = entityAt(mail, path);
            extractor.save(mail, entity, summarize(entity.part, false));
        }
    }
    if (progress) {
        std::cerr << (terminal ? "\r" : "") << "knmime: " << extractor.written() << " files written from "
                  << input.count() << (input.count() == 1 ? " message\n" : " messages\n");
    }
    return 0;
}
