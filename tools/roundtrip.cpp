// check: lists what the reader repaired in a message, then prints the message, parses the
// printed text strictly and compares the two trees and texts. Every program that edits mail
// through the library relies on this round trip. --strict parses the input itself strictly.

#include "commands.h"
#include "mailinput.h"
#include "partinfo.h"
#include "partpath.h"

#include <algorithm>
#include <iostream>
#include <optional>

namespace {

// The 1-based line on which two different texts first differ.
std::size_t firstDifferentLine(const KNCString& a, const KNCString& b)
{
    const auto where = std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first;
    return 1 + static_cast<std::size_t>(std::count(a.begin(), where, '\n'));
}

KNCString quoted(const KNMimeHeader& header)
{
    return '"' + KNMimeUtils::unfoldAndTrim(header.asString()) + '"';
}

KNCString became(std::size_t before, std::size_t after)
{
    return std::to_string(before) + " became " + std::to_string(after);
}

bool failed(const KNCString& why)
{
    std::cout << why << '\n';
    return false;
}

std::optional<KNCString> headerDifference(const KNMimePart& before, const KNMimePart& after)
{
    if (before.getHeaderCount() != after.getHeaderCount())
        return "header count " + became(before.getHeaderCount(), after.getHeaderCount());
    for (std::size_t i = 0; i < before.getHeaderCount(); ++i) {
        if (before.getHeader(i) != after.getHeader(i))
            return "header " + std::to_string(i + 1) + ' ' + quoted(before.getHeader(i)) + " became " + quoted(after.getHeader(i));
    }
    return std::nullopt;
}

// The first difference between the part before and after the round trip, in words.
std::optional<KNCString> difference(const KNMimePart& before, const KNMimePart& after, PartPath& path)
{
    const KNCString where = describePart(path) + ": ";
    if (const auto headers = headerDifference(before, after))
        return where + *headers;
    if (before.isMultipart() != after.isMultipart())
        return where + (before.isMultipart() ? "a multipart became a single part" : "a single part became a multipart");

    if (!before.isMultipart()) {
        const KNCString a = before.getBody();
        const KNCString b = after.getBody();
        if (a == b)
            return std::nullopt;
        return where + "the body changed from line " + std::to_string(firstDifferentLine(a, b)) + " (" +
               became(a.size(), b.size()) + " bytes)";
    }

    const KNMimeMultipart a(before);
    const KNMimeMultipart b(after);
    if (a.getPreamble() != b.getPreamble())
        return where + "the preamble changed";
    if (a.getPartCount() != b.getPartCount())
        return where + "part count " + became(a.getPartCount(), b.getPartCount());
    for (std::size_t i = 0; i < a.getPartCount(); ++i) {
        path.push_back(i);
        if (auto found = difference(a.getPart(i), b.getPart(i), path))
            return found;
        path.pop_back();
    }
    return std::nullopt;
}

// Prints the printed text, parses it strictly, prints it again and compares; "ok" when the
// two trees and texts are the same. `input`, when given, is the text `parsed` was parsed
// from, compared with the printed text as a note.
bool roundTrip(const KNMimePart& parsed, const KNCString* input)
{
    // Headers are checked when printed, not when parsed, so printing can refuse what parsed.
    KNCString printed;
    KNMimePart reparsed;
    try {
        printed = parsed.asString();
    } catch (const KNxmsg& error) {
        return failed("the message parses but does not print: " + error.why());
    }
    try {
        reparsed.fromString(printed);
    } catch (const KNxmsg& error) {
        return failed("the printed message does not parse: " + error.why());
    }

    if (parsed != reparsed) {
        PartPath path;
        const auto found = difference(parsed, reparsed, path);
        return failed(found ? *found : "the parsed and the re-parsed message compare unequal");
    }
    const KNCString reprinted = reparsed.asString();
    if (reprinted != printed) {
        return failed("printing the re-parsed message gives another text from line " +
                      std::to_string(firstDifferentLine(printed, reprinted)));
    }

    std::cout << "ok";
    if (input && printed != *input) // the library normalises some spellings; that is no failure
        std::cout << " (the printed text differs from the input from line " << firstDifferentLine(*input, printed) << ')';
    std::cout << '\n';
    return true;
}

// The message as the strict parser reads it, checked through a round trip.
bool strictCheck(const Mail& mail)
{
    const KNCString input(mail.text);
    KNMimePart parsed;
    try {
        parsed.fromString(input);
    } catch (const KNxmsg& error) {
        return failed(mail.source + ": the message does not parse: " + error.why());
    }
    return roundTrip(parsed, &input);
}

// The reader's defects, then the round trip of the message as the reader read it.
bool forgivingCheck(const Mail& mail)
{
    const std::vector<KNMimeDefect>& defects = mail.result.getDefects();
    for (const KNMimeDefect& defect : defects)
        std::cout << describeDefect(defect) << '\n';
    const bool printsBack = roundTrip(mail.result.getMessage(), nullptr);
    return printsBack && defects.empty();
}

} // namespace

int runCheck(const Invocation& invocation)
{
    const MailInput input(invocation.operands[0]);
    bool good = true;
    for (std::size_t i = 0; i < input.count(); ++i) {
        const Mail mail = input.read(i);
        if (mail.number)
            std::cout << "message " << mail.number << '\n';
        if (!(invocation.has("--strict") ? strictCheck(mail) : forgivingCheck(mail)))
            good = false;
    }
    return good ? 0 : 1;
}
