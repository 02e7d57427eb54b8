// The commands that look into a message: tree, headers and extract.

#include "commands.h"
#include "files.h"
#include "partinfo.h"
#include "partpath.h"

#include <algorithm>
#include <iostream>

namespace {

KNMimePart readMessage(const KNCString& file)
{
    KNMimePart message;
    message.fromString(readInput(file));
    return message;
}

KNCString counted(std::size_t count, const char* singular, const char* plural)
{
    return std::to_string(count) + ' ' + (count == 1 ? singular : plural);
}

// --- tree ----------------------------------------------------------------------------

// One line of the tree: path, media type, transfer encoding, size, file name.
using Row = KNCStringList;

struct Tree {
    std::vector<Row> rows;
    KNCStringList problems; // bodies that do not decode, reported after the tree
};

// The size cell of a leaf. A body that does not decode does not stop the listing: a damaged
// message is what one most wants to look into.
KNCString decodedSize(const KNMimePart& part, const PartPath& path, Tree& tree)
{
    try {
        return counted(decodedBodyOf(part).size(), "byte", "bytes");
    } catch (const KNMimeError& error) {
        tree.problems.push_back(describePart(path) + ": " + error.why());
        return "undecodable";
    }
}

void addRows(const KNMimePart& part, PartPath& path, Tree& tree)
{
    Row row{formatPartPath(path), mediaTypeOf(part), transferEncodingOf(part)};
    if (!part.isMultipart()) {
        row.push_back(decodedSize(part, path, tree));
        const KNCString filename = filenameOf(part);
        if (!filename.empty())
            row.push_back('"' + filename + '"');
        tree.rows.push_back(row);
        return;
    }
    const KNMimeMultipart multipart(part); // shares the body, copies nothing
    row.push_back(counted(multipart.getPartCount(), "part", "parts"));
    tree.rows.push_back(row);
    // The recursion is as deep as the nesting, which the parser limits.
    for (std::size_t i = 0; i < multipart.getPartCount(); ++i) {
        path.push_back(i);
        addRows(multipart.getPart(i), path, tree);
        path.pop_back();
    }
}

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
                line.append(widths[i] - row[i].size() + 2, ' ');
        }
        std::cout << line << '\n';
    }
}

} // namespace

int runTree(const Invocation& invocation)
{
    const KNMimePart message = readMessage(invocation.operands[0]);
    Tree tree;
    PartPath path;
    addRows(message, path, tree);
    printColumns(tree.rows);
    for (const KNCString& problem : tree.problems)
        std::cerr << "knmime: " << problem << '\n';
    return tree.problems.empty() ? 0 : 1;
}

int runHeaders(const Invocation& invocation)
{
    const KNCString pathText = invocation.operands.size() > 1 ? invocation.operands[1] : ".";
    const PartPath path = parsePartPath(pathText); // a bad path is reported before reading
    const KNMimePart part = findPart(readMessage(invocation.operands[0]), path);
    for (std::size_t i = 0; i < part.getHeaderCount(); ++i) {
        const KNCString line = part.getHeader(i).asString();
        if (invocation.decodeWords)
            std::cout << decodeEncodedWords(KNMimeUtils::unfoldAndTrim(line)) << '\n';
        else // folded as printed, with the terminal's line ends instead of CRLF
            std::cout << KNMimeUtils::replaceLineDelimiter(line, "\n") << '\n';
    }
    return 0;
}

int runExtract(const Invocation& invocation)
{
    const PartPath path = parsePartPath(invocation.operands[1]);
    const KNMimePart part = findPart(readMessage(invocation.operands[0]), path);
    if (part.isMultipart()) {
        throw UsageError(describePart(path) + " is a multipart; extract writes the body of a single "
                         "part (tree lists them)");
    }
    writeOutput(invocation.output, decodedBodyOf(part));
    return 0;
}
