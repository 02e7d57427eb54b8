// encode and decode: the body transfer encodings applied to a whole file, bytes in, bytes out.
// Encoded text has CRLF line ends, as MIME bodies do.

#include "commands.h"
#include "files.h"

namespace {

// The encoding named on the command line; only the two that change the bytes are offered.
KNCString codecNamed(const KNCString& name)
{
    for (const KNCStringConstant* codec : {&KNMimeUtils::Base64, &KNMimeUtils::QuotedPrintable}) {
        if (knEqualsIgnoreCase(name, *codec))
            return *codec;
    }
    throw UsageError("unknown codec \"" + name + "\": use base64 or quoted-printable");
}

KNCString inputOf(const Invocation& invocation)
{
    return readInput(invocation.operands.size() > 1 ? invocation.operands[1] : "-");
}

} // namespace

int runEncode(const Invocation& invocation)
{
    const KNCString& codec = codecNamed(invocation.operands[0]);
    writeOutput("-", KNMimeUtils::encode(inputOf(invocation), codec));
    return 0;
}

int runDecode(const Invocation& invocation)
{
    const KNCString& codec = codecNamed(invocation.operands[0]);
    writeOutput("-", KNMimeUtils::decode(inputOf(invocation), codec));
    return 0;
}
