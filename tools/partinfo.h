#ifndef KN_TOOLS_PARTINFO_H
#define KN_TOOLS_PARTINFO_H

// What a part says about its content, read through the library's typed headers, with the
// defaults MIME gives a part that lacks a header.

#include <mime/KNMime.h>

#include <optional>

// The part's first header with the label of the typed header class H, if it has one.
template <class H>
std::optional<H> firstHeader(const KNMimePart& part)
{
    const std::size_t i = part.findHeader(H::Label, 0);
    if (i == KNCString::npos)
        return std::nullopt;
    return H(part.getHeader(i));
}

// "type/subtype" as written in the Content-Type header; "text/plain" without one.
KNCString mediaTypeOf(const KNMimePart& part);

// The Content-Transfer-Encoding name; "7bit" without one.
KNCString transferEncodingOf(const KNMimePart& part);

// The body with its transfer encoding undone (UNKNOWN_ENCODING for a name the library lacks).
KNCString decodedBodyOf(const KNMimePart& part);

// The Content-Disposition filename, else the Content-Type name, with encoded words decoded;
// empty when the part names no file.
KNCString filenameOf(const KNMimePart& part);

// A header value with its encoded words decoded for display; a word that does not decode
// stays as it is. The decoded bytes keep the words' charsets (UTF-8 in most mail): nothing
// converts between charsets.
KNCString decodeEncodedWords(const KNCString& value);

#endif
