#ifndef KN_FUZZ_FUZZCHECK_H
#define KN_FUZZ_FUZZCHECK_H

// What the fuzz targets share: checks that stop the run with a report, counted skips of
// inputs a property does not apply to, and the self-test switch.
//
// KNMIME_FUZZ_BREAK=<check name> turns that one check around: it reports a failure the
// first time its property holds. Running a target over its seed corpus that way shows the
// check is reached and that its failure ends the run (see fuzz/README.md).

#include <foundation/KNCString.h>
#include <mime/KNMime.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

namespace fuzzcheck {

// The text with bytes outside printable ASCII written as \xHH, for reports.
inline std::string escaped(const std::string& text)
{
    std::string out;
    for (const char c : text) {
        const unsigned char byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7F && byte != '\\') {
            out += c;
        } else {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02X", byte);
            out += hex;
        }
    }
    return out;
}

// Skipped inputs per reason, printed to stderr when the process ends.
class Skips {
public:
    ~Skips()
    {
        for (const auto& [reason, count] : counts_)
            std::fprintf(stderr, "skipped %lu: %s\n", count, reason.c_str());
    }
    void count(const std::string& reason) { ++counts_[reason]; }

private:
    std::map<std::string, unsigned long> counts_;
};

inline Skips& skips()
{
    static Skips counted;
    return counted;
}

inline void skip(const std::string& reason)
{
    skips().count(reason);
}

// The bracketed identifier an error text starts with, or the whole text.
inline std::string errorId(const KNxmsg& e)
{
    const std::string& why = e.why();
    return why.compare(0, 1, "[") == 0 ? why.substr(0, why.find(']') + 1) : why;
}

// Reports a failed check with the texts involved (`detail` is only called on failure) and aborts.
template <class Detail>
void check(const char* name, bool holds, Detail detail)
{
    static const char* const broken = std::getenv("KNMIME_FUZZ_BREAK");
    if (broken != nullptr && std::strcmp(broken, name) == 0)
        holds = !holds;
    if (holds)
        return;
    std::fprintf(stderr, "\nCHECK FAILED: %s\n%s\n", name, escaped(detail()).c_str());
    std::abort();
}

inline void check(const char* name, bool holds)
{
    check(name, holds, [] { return std::string(); });
}

// The fixed point leaves out, as documented, tokens that hold a NUL: labels, media types,
// subtypes, disposition types and parameter names are checked only up to their first NUL,
// so what follows it (a quote, a ';', a colon) prints raw and reads back differently.
constexpr const char* nulInToken = "documented: a token is checked only up to a NUL, so what follows it may not read back";

inline bool holdsNul(const KNCString& text)
{
    return text.find('\0') != KNCString::npos;
}

// A parameter list, or a value owning one.
template <class Parameters>
bool nulInNames(const Parameters& list)
{
    for (std::size_t i = 0; i < list.getParameterCount(); ++i) {
        if (holdsNul(list.getParameter(i).getName()))
            return true;
    }
    return false;
}

inline bool nulInTokens(const KNMimeParameterList& list)
{
    return nulInNames(list);
}

inline bool nulInTokens(const KNMimeContentType& type)
{
    return holdsNul(type.getMediaType()) || holdsNul(type.getSubType()) || nulInNames(type);
}

inline bool nulInTokens(const KNMimeContentDisposition& disposition)
{
    return holdsNul(disposition.getType()) || nulInNames(disposition);
}

// A printed label may hold quotes, parentheses and backslashes (only blanks, colons,
// controls and DEL are refused), which reading a label takes as quoting and comments.
constexpr const char* quotingInLabel = "documented: a label may print quotes, parentheses or backslashes, which reading removes";

// A parameter value may hold a CR or LF read from a quoted pair. Most such values do not
// print (INVALID_VALUE), but a CR LF before a blank is a fold and prints: reading it again
// unfolds it away.
constexpr const char* lineBreakInValue = "documented: a CR or LF read from a quoted pair does not read back";

template <class Parameters>
bool lineBreakInValues(const Parameters& list)
{
    for (std::size_t i = 0; i < list.getParameterCount(); ++i) {
        if (list.getParameter(i).getValue().find_first_of("\r\n") != KNCString::npos)
            return true;
    }
    return false;
}

// The boundary parameter of a part's first Content-Type, or empty.
inline KNCString boundaryOf(const KNMimePart& part)
{
    const std::size_t i = part.findHeader(KNMimeContentTypeHeader::Label, 0);
    if (i == KNCString::npos)
        return KNCString();
    return KNMimeContentTypeHeader(part.getHeader(i)).getContentType().getParameterValue(KNMimeMultipartType::Boundary);
}

// Why the header is outside the fixed point, or null.
inline const char* outsideFixedPoint(const KNMimeHeader& header)
{
    const KNCString label = header.getLabel();
    if (holdsNul(label))
        return nulInToken;
    if (label.find_first_of("\"()\\") != KNCString::npos)
        return quotingInLabel;
    if (dynamic_cast<const KNMimeContentTypeHeaderImp*>(header.body()) != nullptr) {
        const KNMimeContentType type = KNMimeContentTypeHeader(header).getContentType();
        if (nulInTokens(type))
            return nulInToken;
        if (lineBreakInValues(type))
            return lineBreakInValue;
    }
    if (dynamic_cast<const KNMimeContentDispositionHeaderImp*>(header.body()) != nullptr) {
        const KNMimeContentDisposition disposition = KNMimeContentDispositionHeader(header).getContentDisposition();
        if (nulInTokens(disposition))
            return nulInToken;
        if (lineBreakInValues(disposition))
            return lineBreakInValue;
    }
    return nullptr;
}

} // namespace fuzzcheck

#endif
