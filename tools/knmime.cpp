// knmime: the MIME library on the command line. Lists the parts of messages, shows their
// text and headers, writes out attachments, checks messages, and applies the body transfer
// encodings to files. Mail is read as it is stored: LF or CRLF, one message or an mbox.
//
//     knmime tree message.eml
//     knmime extract message.eml -d attachments
//
// This file reads the command line and turns failures into exit statuses; the commands live
// in inspect.cpp, extract.cpp, compose.cpp, roundtrip.cpp and codec.cpp.

#include "commands.h"

#include <foundation/KNLibraryVersion.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <iterator>

namespace {

constexpr std::size_t Many = static_cast<std::size_t>(-1);

struct Command {
    const char* name;
    const char* synopsis; // the arguments, after "knmime NAME"
    const char* summary;  // one line for the list of commands
    const char* details;  // the rest of `knmime NAME --help`
    std::size_t minOperands;
    std::size_t maxOperands;
    const char* flags;  // the options without a value it takes, blank-separated
    const char* values; // the options with a value it takes (each may be repeated)
    int (*run)(const Invocation&);
};

// One entry per command, in the order the usage lists them: a command is its entry here and
// its run function (commands.h). Its options are listed by name; main parses them all alike.
const Command Commands[] = {
    {"tree", "[FILE] [--json] [--defects]", "list the parts of each message",
     "Prints From, To, Date and Subject, then one line per part: path, media type, transfer\n"
     "encoding, decoded size (or part count) and file name. An attached message at leaf N\n"
     "is opened as N.1. Without FILE it shows the bundled sample message.\n"
     "  --json     one JSON object per message, one per line\n"
     "  --defects  list what the reader repaired, after the tree\n",
     0, 1, "--json --defects", "", runTree},
    {"show", "FILE [PATH]", "print the text of a part in UTF-8 (the main text by default)",
     "A message or multipart shows its main text (plain text preferred); a single part\n"
     "its own text, converted from its charset.\n",
     1, 2, "", "", runShow},
    {"headers", "FILE [PATH] [--decode | --raw]", "print the headers of a part (the message by default)",
     "  --decode   UTF-8 for encoded words, RFC 2231 parameters and charsets\n"
     "  --raw      the header lines exactly as they stand in the input (in the decoded\n"
     "             text for a message attached in base64 or quoted-printable)\n",
     1, 2, "--decode --raw", "", runHeaders},
    {"extract", "FILE [PATH...] [-d DIR] [-o OUT] [--raw]", "write attachments or parts to files",
     "Without PATH, every attachment (a part with a file name, or not text) goes into DIR\n"
     "under its own name made safe; an existing file is never replaced (\"name (1).ext\").\n"
     "One line per file written.\n"
     "  -d DIR     the folder to write into (default: the current folder)\n"
     "  -o OUT     write the one PATH given to OUT (\"-\" is standard output)\n"
     "  --raw      write bodies as stored, without undoing the transfer encoding\n",
     1, Many, "--raw", "-d -o", runExtract},
    {"compose", "--from A --to B [--cc C] --subject S [--text FILE] [--html FILE] [--attach FILE]... [--inline FILE]...",
     "build a message and write it to standard output",
     "Addresses and the subject are UTF-8; --to and --cc may be repeated. FILE \"-\" is standard\n"
     "input. A file travels under its own name; its media type comes from its extension\n"
     "unless --type TYPE stands before it. The HTML shows an --inline file as cid:NAME.\n"
     "  --reply-to A      a Reply-To address\n"
     "  --type TYPE       the media type of the --attach or --inline file named next\n",
     0, 0, "", "--from --to --cc --reply-to --subject --text --html --attach --inline --type", runCompose},
    {"check", "FILE [--strict]", "list defects and check the print and parse round trip",
     "Lists what the reader repaired, then prints the message, parses it strictly, prints it\n"
     "again and reports the first difference. Exit status 1 when anything was found.\n"
     "  --strict   parse the input itself with the strict parser (CRLF line ends needed)\n",
     1, 1, "--strict", "", runCheck},
    {"encode", "CODEC [FILE]", "encode FILE with base64 or quoted-printable",
     "Writes the encoded text with CRLF line ends. FILE \"-\" or none is standard input.\n",
     1, 2, "", "", runEncode},
    {"decode", "CODEC [FILE] [--strict]", "decode base64 or quoted-printable text",
     "Forgiving by default: wrapped lines, LF line ends and anything after base64 padding\n"
     "are accepted, as other programs write them.\n"
     "  --strict   refuse what the library's strict codecs refuse\n",
     1, 2, "--strict", "", runDecode},
};

const char* const Notes =
    "FILE is a message (LF or CRLF line ends) or an mbox; \"-\" is standard input.\n"
    "PATH is the part numbers joined by dots as tree prints them (2, 1.2); \".\" is the\n"
    "whole message.\n"
    "Exit status: 0 done, 1 a data error or a failed check, 2 a bad command line.\n";

KNCString usageOf(const Command& command)
{
    return KNCString("usage: knmime ") + command.name + ' ' + command.synopsis + '\n';
}

KNCString usage()
{
    KNCString text = "usage: knmime COMMAND [ARGUMENTS]\n       knmime COMMAND --help\n       knmime --version\n\n";
    for (const Command& command : Commands)
        text += KNCString("  ") + command.name + ' ' + command.synopsis + "\n      " + command.summary + '\n';
    return text + '\n' + Notes;
}

// A usage error, with the usage of the command it concerns (or of the tool).
class CommandUsageError : public UsageError {
public:
    CommandUsageError(const KNCString& text, const Command* command) : UsageError(text), command_(command) {}
    KNCString usageText() const { return command_ ? usageOf(*command_) : usage(); }

private:
    const Command* command_;
};

const Command* commandNamed(const KNCString& name)
{
    for (const Command& command : Commands) {
        if (name == command.name)
            return &command;
    }
    return nullptr;
}

// Whether `option` is one of the blank-separated words of `list`.
bool listed(const char* list, const KNCString& option)
{
    const std::string_view words = list;
    for (std::size_t start = 0; start < words.size();) {
        std::size_t end = words.find(' ', start);
        if (end == std::string_view::npos)
            end = words.size();
        if (words.substr(start, end - start) == option)
            return true;
        start = end + 1;
    }
    return false;
}

// Options may stand anywhere after the command; "--" ends them, and "-" is an operand.
Invocation parseArguments(const Command& command, char** first, char** last)
{
    Invocation invocation;
    bool optionsEnded = false;
    for (char** arg = first; arg != last; ++arg) {
        const KNCString text = *arg;
        if (optionsEnded || text == "-" || text.empty() || text[0] != '-') {
            invocation.operands.push_back(text);
        } else if (text == "--") {
            optionsEnded = true;
        } else if (listed(command.flags, text)) {
            invocation.flags.push_back(text);
        } else if (listed(command.values, text)) {
            if (std::next(arg) == last)
                throw UsageError(text + " needs a value");
            invocation.values.emplace_back(text, *++arg);
        } else {
            throw UsageError(KNCString(command.name) + " has no option " + text);
        }
    }
    if (invocation.has("--decode") && invocation.has("--raw"))
        throw UsageError("--decode and --raw exclude each other");
    const std::size_t count = invocation.operands.size();
    if (count < command.minOperands || count > command.maxOperands)
        throw UsageError(KNCString("wrong number of arguments for ") + command.name);
    return invocation;
}

bool asksForHelp(char** first, char** last)
{
    for (char** arg = first; arg != last && KNCString(*arg) != "--"; ++arg) {
        if (KNCString(*arg) == "--help" || KNCString(*arg) == "-h")
            return true;
    }
    return false;
}

int run(int argc, char** argv)
{
    if (argc < 2)
        throw CommandUsageError("no command given", nullptr);
    const KNCString name = argv[1];
    if (name == "--help" || name == "-h") {
        std::cout << usage();
        return 0;
    }
    if (name == "--version") {
        std::cout << "knmime " << KNMIME_VERSION_STRING << '\n';
        return 0;
    }
    const Command* command = commandNamed(name);
    if (!command)
        throw CommandUsageError("unknown command \"" + name + '"', nullptr);
    if (asksForHelp(argv + 2, argv + argc)) {
        KNCString summary = command->summary;
        summary[0] = static_cast<char>(summary[0] - 'a' + 'A');
        std::cout << usageOf(*command) << '\n' << summary << ".\n" << command->details;
        return 0;
    }
    try {
        return command->run(parseArguments(*command, argv + 2, argv + argc));
    } catch (const CommandUsageError&) {
        throw;
    } catch (const UsageError& error) {
        throw CommandUsageError(error.what(), command);
    }
}

} // namespace

bool Invocation::has(std::string_view flag) const
{
    return std::find(flags.begin(), flags.end(), flag) != flags.end();
}

KNCString Invocation::value(std::string_view option, const KNCString& fallback) const
{
    for (auto it = values.rbegin(); it != values.rend(); ++it) {
        if (it->first == option)
            return it->second;
    }
    return fallback;
}

KNCStringList Invocation::all(std::string_view option) const
{
    KNCStringList found;
    for (const auto& [name, value] : values) {
        if (name == option)
            found.push_back(value);
    }
    return found;
}

int main(int argc, char** argv)
{
    // Output goes out in large pieces: tree --json over a mailbox writes megabytes.
    std::setvbuf(stdout, nullptr, _IOFBF, 1 << 16);
    int status = 0;
    try {
        status = run(argc, argv);
    } catch (const CommandUsageError& error) {
        std::cout.flush();
        std::cerr << "knmime: " << error.what() << "\n\n" << error.usageText();
        return 2;
    } catch (const KNxmsg& error) { // the library's errors, catalogue text first
        std::cout.flush();
        std::cerr << "knmime: " << error.why() << '\n';
        return 1;
    } catch (const std::exception& error) { // data errors; files that cannot be read or written
        std::cout.flush();
        std::cerr << "knmime: " << error.what() << '\n';
        return 1;
    }
    if (!std::cout.flush()) {
        std::cerr << "knmime: cannot write to standard output\n";
        return 1;
    }
    return status;
}
