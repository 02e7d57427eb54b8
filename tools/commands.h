#ifndef KN_TOOLS_COMMANDS_H
#define KN_TOOLS_COMMANDS_H

// The commands of the knmime tool. Each one reads its input, writes its result and returns
// the exit status; failures are thrown: UsageError for a bad command line (exit 2, with the
// usage), DataError for input the command cannot act on and std::runtime_error for a file
// that cannot be read or written (both exit 1, without the usage).

#include <mime/KNMime.h>

#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

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
    KNCStringList operands; // the arguments after the command name, options taken out
    KNCStringList flags;    // the options without a value given ("--json", ...)
    std::vector<std::pair<KNCString, KNCString>> values; // options with a value, in order ("-o", "out")

    // Whether the option `flag` was given.
    bool has(std::string_view flag) const;
    // The value of the last `option` given, or `fallback`.
    KNCString value(std::string_view option, const KNCString& fallback = KNCString()) const;
    // The values of every `option` given, in order (for options that may be repeated).
    KNCStringList all(std::string_view option) const;
};

int runTree(const Invocation& invocation);    // tree [FILE] [--json] [--defects]
int runShow(const Invocation& invocation);    // show FILE [PATH]
int runHeaders(const Invocation& invocation); // headers FILE [PATH] [--decode] [--raw]
int runExtract(const Invocation& invocation); // extract FILE [PATH...] [-d DIR] [-o OUT] [--raw]
int runCompose(const Invocation& invocation); // compose --from A --to B --subject S [...]
int runCheck(const Invocation& invocation);   // check FILE [--strict]
int runEncode(const Invocation& invocation);  // encode CODEC [FILE]
int runDecode(const Invocation& invocation);  // decode CODEC [FILE] [--strict]

#endif
