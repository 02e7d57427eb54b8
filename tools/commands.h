#ifndef KN_TOOLS_COMMANDS_H
#define KN_TOOLS_COMMANDS_H

// The commands of the knmime tool. Each one reads its input, writes its result and returns
// the exit status; failures are thrown: UsageError for a bad command line, KNxmsg from the
// library, std::runtime_error when a file cannot be read or written.

#include <mime/KNMime.h>

#include <stdexcept>

// A command line the tool cannot act on; main prints the text and the usage, and exits 2.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What main has read from the command line for one command.
struct Invocation {
    KNCStringList operands;   // the arguments after the command name, options taken out
    bool decodeWords = false; // --decode
    KNCString output = "-";   // -o OUT; "-" is standard output
};

int runTree(const Invocation& invocation);     // tree FILE
int runHeaders(const Invocation& invocation);  // headers FILE [PATH]
int runExtract(const Invocation& invocation);  // extract FILE PATH
int runCheck(const Invocation& invocation);    // check FILE
int runEncode(const Invocation& invocation);   // encode CODEC [FILE]
int runDecode(const Invocation& invocation);   // decode CODEC [FILE]

#endif
