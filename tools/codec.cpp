// encode and decode: the body transfer encodings applied to a whole file, bytes in, bytes out.
// Encoded text has CRLF line ends, as MIME bodies do. Decoding forgives what other programs
// write (wrapped lines, LF line ends, text after the padding) unless --strict asks for the
// library's strict codecs.

#include "commands.h"
#include "files.h"

#include <mail/KNMimeBodyDecoder.h>

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

KNCString inputName(const Invocation& invocation)
{
    return invocation.operands.size() > 1 ? invocation.operands[1] : "-";
}

} // namespace

int runEncode(const Invocation& invocation)
{
    const KNCString& codec = codecNamed(invocation.operands[0]);
    writeOutput("-", KNMimeUtils::encode(readInput(inputName(invocation)), codec));
    return 0;
}

int runDecode(const Invocation& invocation)
{
    const KNCString& codec = codecNamed(invocation.operands[0]);
    const KNCString name = inputName(invocation);
    const KNCString text = readInput(name);
    if (!invocation.has("--strict")) {
        writeOutput("-", KNMimeBodyDecoder::decode(text, codec).data);
        return 0;
    }
    try {
        writeOutput("-", KNMimeUtils::decode(text, codec));
    } catch (const KNxmsg& error) {
        throw DataError((name == "-" ? KNCString("standard input") : name) + ": " + error.why());
    }
    return 0;
}
