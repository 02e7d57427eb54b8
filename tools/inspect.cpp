// The commands that look into messages: tree, show and headers.

#include "commands.h"
#include "json.h"
#include "mailinput.h"
#include "partinfo.h"

#include <mail/KNMimeMail.h>

#include <algorithm>
#include <iostream>

namespace {

KNCString counted(std::size_t count, const char* singular, const char* plural)
{
    return std::to_string(count) + ' ' + (count == 1 ? singular : plural);
}

// The number of components of a reader path: 0 for the message, 2 for "1.2".
std::size_t depthOf(const KNCString& path)
{
    return path.empty() ? 0 : 1 + static_cast<std::size_t>(std::count(path.begin(), path.end(), '.'));
}

// A line naming the message of an mbox before what is printed about it.
void printHeading(const Mail& mail)
{
    if (mail.number == 0)
        return;
    if (mail.number > 1)
        std::cout << '\n';
    std::cout << "message " << mail.number << '\n';
}

// Calls `each` with every message of the input in turn.
template <class Each>
void forEachMail(const KNCString& file, Each each)
{
    const MailInput input(file);
    for (std::size_t i = 0; i < input.count(); ++i)
        each(input.read(i));
}

// --- tree ----------------------------------------------------------------------------

// One line of the tree: path, media type, transfer encoding, size, file name.
using Row = KNCStringList;

// Prints the rows in columns two blanks apart; the last cell of a row is not padded.
void printColumns(const std::vector<Row>& rows)
{
    std::vector<std::size_t> widths;
    for (const Row& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    }
    for (const Row& row : rows) {
        KNCString line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            line += row[i];
            if (i + 1 < row.size())
                line.append(widths[i] + 2 - row[i].size(), ' ');
        }
        std::cout << line << '\n';
    }
}

void printTree(const Mail& mail, bool withDefects)
{
    printHeading(mail);
    const KNMimePart& message = mail.result.getMessage();
    bool anyHeader = false;
    const auto summary = summaryHeaders(message);
    for (std::size_t i = 0; i < summary.size(); ++i) {
        if (summary[i]) {
            const char* label = SummaryHeaders[i];
            std::cout << label << ':' << KNCString(8 - std::char_traits<char>::length(label), ' ') << *summary[i] << '\n';
            anyHeader = true;
        }
    }
    if (anyHeader)
        std::cout << '\n';

    std::vector<Row> rows;
    for (const KNMimeReadResult::Entity& entity : mail.result.getEntities()) {
        const PartSummary summary = summarize(entity.part);
        Row row{shownPath(entity.path), summary.type, summary.encoding.value_or(KNMimeUtils::SevenBit)};
        if (summary.size)
            row.push_back(counted(*summary.size, "byte", "bytes"));
        else
            row.push_back(counted(KNMimeMultipart(entity.part).getPartCount(), "part", "parts"));
        if (summary.filename)
            row.push_back('"' + *summary.filename + '"');
        rows.push_back(std::move(row));
    }
    printColumns(rows);
    if (withDefects) {
        for (const KNMimeDefect& defect : mail.result.getDefects())
            std::cout << describeDefect(defect) << '\n';
    }
}

// A reader path as the user writes it, without a copy.
std::string_view shownPathView(const KNCString& readerPath)
{
    return readerPath.empty() ? std::string_view(".") : std::string_view(readerPath);
}

void appendNode(JsonText& out, const KNCString& path, const PartSummary& summary)
{
    out.raw('{');
    out.key("path", true);
    out.string(shownPathView(path));
    out.key("type");
    out.string(summary.type);
    out.key("charset");
    out.stringOrNull(summary.charset);
    out.key("encoding");
    out.stringOrNull(summary.encoding);
    out.key("disposition");
    out.stringOrNull(summary.disposition);
    out.key("filename");
    out.stringOrNull(summary.filename);
    out.key("size");
    out.number(summary.size);
    out.key("parts");
    out.raw('[');
}

// One message as one line of JSON, built in `out` (kept from message to message, so that
// its memory is reused) and written in one piece. The entities come depth first, so the open
// nodes form a stack: a node closes when the next entity is no deeper than it.
void printJson(const Mail& mail, JsonText& out)
{
    out.clear();
    out.raw('{');
    out.key("defects", true);
    out.raw('[');
    bool first = true;
    for (const KNMimeDefect& defect : mail.result.getDefects()) {
        if (!first)
            out.raw(',');
        first = false;
        out.raw('{');
        out.key("kind", true);
        out.string(defect.kindName());
        out.key("path");
        out.string(shownPathView(defect.path));
        out.key("offset");
        out.number(defect.offset);
        out.key("text");
        out.string(defect.text);
        out.raw('}');
    }
    out.raw(']');
    // The summary holds From, To, Date, Subject; the keys come in the documented order.
    const auto summary = summaryHeaders(mail.result.getMessage());
    const std::pair<const char*, std::size_t> keys[] = {{"from", 0}, {"to", 1}, {"subject", 3}, {"date", 2}};
    for (const auto& [key, index] : keys) {
        out.key(key);
        out.stringOrNull(summary[index]);
    }
    out.key("root");

    std::size_t open = 0;      // nodes written and not yet closed
    bool hasChildren = false;  // whether the innermost open node has a child yet
    for (const KNMimeReadResult::Entity& entity : mail.result.getEntities()) {
        const std::size_t depth = depthOf(entity.path);
        for (; open > depth; --open) {
            out.raw("]}");
            hasChildren = true;
        }
        if (open > 0 && hasChildren)
            out.raw(',');
        appendNode(out, entity.path, summarize(entity.part));
        ++open;
        hasChildren = false;
    }
    for (; open > 0; --open)
        out.raw("]}");
    out.raw("}\n");
    const std::string_view text = out.text();
    std::cout.write(text.data(), static_cast<std::streamsize>(text.size()));
}

} // namespace

int runTree(const Invocation& invocation)
{
    const KNCString file = invocation.operands.empty() ? KNCString() : invocation.operands[0];
    JsonText json;
    forEachMail(file, [&](const Mail& mail) {
        if (invocation.has("--json"))
            printJson(mail, json);
        else
            printTree(mail, invocation.has("--defects"));
    });
    return 0;
}

// --- show ----------------------------------------------------------------------------

int runShow(const Invocation& invocation)
{
    const KNCString pathText = invocation.operands.size() > 1 ? invocation.operands[1] : ".";
    forEachMail(invocation.operands[0], [&](const Mail& mail) {
        const KNMimeReadResult::Entity entity = entityAt(mail, pathText);
        std::optional<KNCString> text;
        // A message or multipart shows its main text; a single part its own text.
        if (entity.path.empty() || entity.part.isMultipart())
            text = KNMimeMessageView(entity.part).mainText();
        else
            text = KNMimeBodyDecoder::text(entity.part).text;
        if (!text)
            throw DataError(where(mail, entity.path) + "no text body to show (tree lists the parts)");
        printHeading(mail);
        std::cout << *text;
        if (!text->empty() && text->back() != '\n')
            std::cout << '\n';
    });
    return 0;
}

// --- headers -------------------------------------------------------------------------

namespace {

// The header block that starts at `offset` of `text`: up to the empty line that ends it (or
// the end of the text).
std::string_view headerBlockAt(std::string_view text, std::size_t offset)
{
    if (offset >= text.size())
        return {};
    const std::string_view rest = text.substr(offset);
    for (std::size_t start = 0; start < rest.size();) {
        std::size_t end = rest.find('\n', start);
        end = end == std::string_view::npos ? rest.size() : end + 1;
        const std::string_view line = rest.substr(start, end - start);
        if (line == "\n" || line == "\r\n")
            return rest.substr(0, start);
        start = end;
    }
    return rest;
}

// Whether the reader undid the transfer encoding of `leaf` to read the message attached in
// it (base64, quoted-printable, uuencode), as it names the encoding.
bool isDecodedForReading(const KNMimePart& leaf)
{
    const std::size_t i = leaf.findHeader("Content-Transfer-Encoding", 0);
    if (leaf.isMultipart() || i == KNCString::npos)
        return false;
    KNCString encoding;
    try {
        encoding = knToLower(KNMimeUtils::cleanToken(leaf.getHeader(i).body()->getValueAsString(), true));
    } catch (const KNxmsg&) {
        return false;
    }
    const KNMimeBodyDecoder::Encoding kind = KNMimeBodyDecoder::encodingByName(encoding);
    return kind != KNMimeBodyDecoder::Encoding::Identity && kind != KNMimeBodyDecoder::Encoding::Unknown;
}

// The header block of the entity at reader path `path` of `result`, read from `text`, as it
// stands in the text the reader read it from. An entity of a message attached in a leaf sent
// in base64 or quoted-printable stands in that decoded message, not in `text` (the reader
// gives it the offset of the encoded body): the leaf's body is decoded and read again, and
// the block taken from there, which may hold another such leaf.
KNCString rawHeaderBlock(std::string_view text, const KNMimeReadResult& result, const KNCString& path)
{
    // The leaves on the way, outermost first: "" holds "1", "2" holds "2.1", "2.1.3" holds "2.1.3.1".
    for (std::size_t end = 0; end <= path.size(); end = path.find('.', end + 1)) {
        const std::size_t attached = end == 0 ? 0 : end + 1; // where the ".1" of the message starts
        if (path.compare(attached, 1, "1") != 0 || (attached + 1 < path.size() && path[attached + 1] != '.'))
            continue;
        const std::optional<KNMimeReadResult::Entity> leaf = result.findEntity(path.substr(0, end));
        if (!leaf || !isDecodedForReading(leaf->part))
            continue;
        const KNCString decoded = KNMimeBodyDecoder::decode(leaf->part).data;
        const KNMimeReadResult inner = KNMimeReader().read(decoded);
        const KNCString innerPath = attached + 2 <= path.size() ? path.substr(attached + 2) : KNCString();
        return rawHeaderBlock(decoded, inner, innerPath);
    }
    const std::optional<KNMimeReadResult::Entity> entity = result.findEntity(path);
    return entity ? KNCString(headerBlockAt(text, entity->offset)) : KNCString();
}

} // namespace

int runHeaders(const Invocation& invocation)
{
    const KNCString pathText = invocation.operands.size() > 1 ? invocation.operands[1] : ".";
    forEachMail(invocation.operands[0], [&](const Mail& mail) {
        const KNMimeReadResult::Entity entity = entityAt(mail, pathText);
        printHeading(mail);
        if (invocation.has("--raw")) {
            const KNCString block = rawHeaderBlock(mail.text, mail.result, entity.path);
            std::cout.write(block.data(), static_cast<std::streamsize>(block.size()));
            return;
        }
        for (std::size_t i = 0; i < entity.part.getHeaderCount(); ++i) {
            const KNMimeHeader& header = entity.part.getHeader(i);
            if (invocation.has("--decode"))
                std::cout << decodedHeaderLine(header) << '\n';
            else // folded as printed, with the terminal's line ends instead of CRLF
                std::cout << KNMimeUtils::replaceLineDelimiter(header.asString(), "\n") << '\n';
        }
    });
    return 0;
}
