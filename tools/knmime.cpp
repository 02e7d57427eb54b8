// knmime: the MIME library on the command line. Lists the parts of a message, prints the
// headers of a part, writes out a decoded body, checks that a message survives a parse and
// print round trip, and applies the body transfer encodings to files.
//
//     knmime tree message.eml
//     knmime extract message.eml 3 -o report.pdf
//
// This file reads the command line and turns failures into exit statuses; the commands live
// in inspect.cpp, roundtrip.cpp and codec.cpp.

#include "commands.h"

#include <iostream>
#include <iterator>

namespace {

const char* const Usage =
    "usage: knmime COMMAND ARGUMENTS\n"
    "\n"
    "  tree FILE                  list the parts: path, media type, transfer encoding,\n"
    "                             decoded size and file name\n"
    "  headers FILE [PATH] [--decode]\n"
    "                             print the headers of a part (the message by default);\n"
    "                             --decode decodes encoded words for display\n"
    "  extract FILE PATH [-o OUT] write the decoded body of a part to OUT or standard output\n"
    "  check FILE                 parse, print and parse again; say \"ok\" or what differs\n"
    "  encode CODEC [FILE]        encode FILE with base64 or quoted-printable\n"
    "  decode CODEC [FILE]        decode base64 or quoted-printable text\n"
    "\n"
    "FILE \"-\", or a missing codec input, is standard input. Messages need CRLF line ends.\n"
    "PATH is the part numbers joined by dots as tree prints them (2, 1.2); \".\" is the\n"
    "whole message.\n"
    "Exit status: 0 done, 1 error or failed check, 2 bad command line.\n";

struct Command {
    const char* name;
    std::size_t minOperands;
    std::size_t maxOperands;
    bool takesDecode; // --decode
    bool takesOutput; // -o OUT
    int (*run)(const Invocation&);
};

const Command Commands[] = {
    {"tree", 1, 1, false, false, runTree},
    {"headers", 1, 2, true, false, runHeaders},
    {"extract", 2, 2, false, true, runExtract},
    {"check", 1, 1, false, false, runCheck},
    {"encode", 1, 2, false, false, runEncode},
    {"decode", 1, 2, false, false, runDecode},
};

const Command& commandNamed(const KNCString& name)
{
    for (const Command& command : Commands) {
        if (name == command.name)
            return command;
    }
    throw UsageError("unknown command \"" + name + '"');
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
        } else if (text == "--decode" && command.takesDecode) {
            invocation.decodeWords = true;
        } else if (text == "-o" && command.takesOutput) {
            if (std::next(arg) == last)
                throw UsageError("-o needs a file name");
            invocation.output = *++arg;
        } else {
            throw UsageError(KNCString(command.name) + " has no option " + text);
        }
    }
    const std::size_t count = invocation.operands.size();
    if (count < command.minOperands || count > command.maxOperands)
        throw UsageError(KNCString("wrong number of arguments for ") + command.name);
    return invocation;
}

int run(int argc, char** argv)
{
    const KNCString name = argv[1];
    if (name == "--help" || name == "-h") {
        std::cout << Usage;
        return 0;
    }
    const Command& command = commandNamed(name);
    return command.run(parseArguments(command, argv + 2, argv + argc));
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::cerr << Usage;
        return 2;
    }
    int status = 0;
    try {
        status = run(argc, argv);
    } catch (const UsageError& error) {
        std::cerr << "knmime: " << error.what() << "\n\n" << Usage;
        return 2;
    } catch (const KNxmsg& error) { // the library's errors, catalogue text first
        std::cerr << "knmime: " << error.why() << '\n';
        return 1;
    } catch (const std::exception& error) { // files that cannot be read or written
        std::cerr << "knmime: " << error.what() << '\n';
        return 1;
    }
    if (!std::cout.flush()) {
        std::cerr << "knmime: cannot write to standard output\n";
        return 1;
    }
    return status;
}
