#ifndef KN_TOOLS_COMMANDS_H
#define KN_TOOLS_COMMANDS_H

// The commands of the knmime tool. Each one reads its input, writes its result and returns
// the exit status; failures are thrown: UsageError for a bad command line (exit 2, with the
// usage), DataError for input the command cannot act on and std::runtime_error for a file
// that cannot be read or written (both exit 1, without the usage).

#include <mime/KNMime.h>

#include <stdexcept>

// A command line the tool cannot act on; main prints the text and the usage, and exits 2.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Input that does not hold what the command asks for (no such part, a body the strict codec
// refuses); main prints the text, which names the file and the part, and exits 1.
class DataError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What main has read from the command line for one command.
struct Invocation {
    KNCStringList operands;   // the arguments after the command name, options taken out
    bool decode = false;      // --decode
    bool raw = false;         // --raw
    bool json = false;        // --json
    bool defects = false;     // --defects
    bool strict = false;      // --strict
    KNCString output;         // -o OUT; empty when not given, "-" is standard output
    KNCString directory = "."; // -d DIR
};

int runTree(const Invocation& invocation);    // tree [FILE] [--json] [--defects]
int runShow(const Invocation& invocation);    // show FILE [PATH]
int runHeaders(const Invocation& invocation); // headers FILE [PATH] [--decode] [--raw]
int runExtract(const Invocation& invocation); // extract FILE [PATH...] [-d DIR] [-o OUT] [--raw]
int runCheck(const Invocation& invocation);   // check FILE [--strict]
int runEncode(const Invocation& invocation);  // encode CODEC [FILE]
int runDecode(const Invocation& invocation);  // decode CODEC [FILE] [--strict]

#endif
