#include <mail/internal/KNMimeFieldReader.h>

#include <foundation/KNxmsg.h>
#include <mime/KNMimeContentDisposition.h>
#include <mime/KNMimeContentDispositionHeader.h>
#include <mime/KNMimeContentDispositionHeaderImp.h>
#include <mime/KNMimeContentDispositionImp.h>
#include <mime/KNMimeContentTransferEncodingHeaderImp.h>
#include <mime/KNMimeContentType.h>
#include <mime/KNMimeContentTypeHeader.h>
#include <mime/KNMimeContentTypeHeaderImp.h>
#include <mime/KNMimeContentTypeImp.h>
#include <mime/KNMimeHeaderFactory.h>
#include <mime/KNMimeHeaderImp.h>
#include <mime/KNMimeParameterList.h>
#include <mime/KNMimeStructuredHeaderImp.h>
#include <mime/KNMimeUnstructuredHeaderImp.h>
#include <mime/KNMimeUtils.h>
#include <mime/KNMimeVersionHeaderImp.h>
#include <mime/internal/KNMimeScan.h>

#include <typeinfo>
#include <utility>
#include <vector>

namespace {

using Kind = KNMimeDefect::Kind;

// A field name as mail defines it: printable ASCII without blank or colon. (The printer would
// take 8-bit bytes too; a name starting with a byte-order mark's bytes would then not read back.)
bool isPrintableLabel(std::string_view label)
{
    if (label.empty())
        return false;
    for (const char c : label) {
        const auto u = static_cast<unsigned char>(c);
        if (u <= ' ' || u >= 0x7f || c == ':')
            return false;
    }
    return true;
}

// The factory, held for the life of the program: creating a header per field should not
// pay for the counted pointer's atomic updates each time.
const KNMimeHeaderFactory& headerFactory()
{
    static const auto* const held =
        new KNTCountingPointer<KNMimeHeaderFactory, KNAtomicCounter>(KNMimeHeaderFactory::instance());
    return **held;
}

// The bytes of a field name that reads the same once cleaned: printable ASCII other than
// blank, colon, quote, parentheses and backslash.
struct PlainLabelTable {
    bool plain[256] = {};

    constexpr PlainLabelTable()
    {
        for (int c = '!'; c < 0x7f; ++c)
            plain[c] = true;
        for (const char* p = ":\"()\\"; *p != '\0'; ++p)
            plain[static_cast<unsigned char>(*p)] = false;
    }
};

constexpr PlainLabelTable plainLabel;

// A field name that reads the same once cleaned: no quote, comment or escape in it.
bool isPlainLabel(std::string_view label)
{
    if (label.empty())
        return false;
    for (const char c : label)
        if (!plainLabel.plain[static_cast<unsigned char>(c)])
            return false;
    return true;
}

// A token as mail defines it. The library's own test stops at a NUL byte, so a name such as
// "plain\0(x" would print and then read back as another value.
bool isToken(const KNCString& text)
{
    return !text.empty() && text.find('\0') == KNCString::npos && KNMimeUtils::isToken(text);
}

bool hasTokenParameterNames(const KNMimeParameterList& parameters)
{
    for (std::size_t i = 0, n = parameters.getParameterCount(); i < n; ++i)
        if (!isToken(parameters.getParameterName(i)))
            return false;
    return true;
}

// Whether the header prints: the typed values refuse names that are not tokens. Checked
// directly for the library's own bodies, by printing for any other.
bool prints(const KNMimeHeader& header)
{
    const KNMimeHeaderImp* body = header.body();
    // The library's own body classes have one type_info each, here in the library, so their
    // addresses tell them apart without comparing names; a class of the application's is
    // none of them.
    const std::type_info* const type = &typeid(*body);
    // Free text first and content types next, the bodies most fields get.
    if (type == &typeid(KNMimeUnstructuredHeaderImp))
        return true;
    if (type == &typeid(KNMimeContentTypeHeaderImp)) {
        const KNMimeContentType value = static_cast<const KNMimeContentTypeHeaderImp*>(body)->getContentType();
        const KNMimeContentTypeImp& held = *value.body();
        return isToken(held.getMediaType()) && isToken(held.getSubType()) && hasTokenParameterNames(held.parameterList());
    }
    if (type == &typeid(KNMimeContentDispositionHeaderImp)) {
        const KNMimeContentDisposition value =
            static_cast<const KNMimeContentDispositionHeaderImp*>(body)->getContentDisposition();
        const KNMimeContentDispositionImp& held = *value.body();
        return isToken(held.getType()) && hasTokenParameterNames(held.parameterList());
    }
    if (type == &typeid(KNMimeStructuredHeaderImp) || type == &typeid(KNMimeVersionHeaderImp))
        return true;
    if (type == &typeid(KNMimeContentTransferEncodingHeaderImp))
        return isToken(static_cast<const KNMimeContentTransferEncodingHeaderImp*>(body)->getEncoding());
    try {
        (void)header.asString();
        return true;
    } catch (const KNxmsg&) {
        return false;
    }
}

// Splits `text` at every `delim` outside quoted strings and comments, as the strict parsers
// split parameter lists; an unterminated quote or comment runs to the end.
std::vector<std::string_view> splitOutsideQuotes(std::string_view text, char delim)
{
    std::vector<std::string_view> pieces;
    std::size_t start = 0;
    bool quoted = false;
    int comment = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if ((quoted || comment > 0) && c == '\\') {
            ++i;
        } else if (quoted) {
            quoted = c != '"';
        } else if (c == '(') {
            ++comment;
        } else if (comment > 0) {
            comment -= c == ')';
        } else if (c == '"') {
            quoted = true;
        } else if (c == delim) {
            pieces.push_back(text.substr(start, i - start));
            start = i + 1;
        }
    }
    pieces.push_back(text.substr(start));
    return pieces;
}

bool isAllBlank(std::string_view text)
{
    return text.find_first_not_of(" \t") == std::string_view::npos;
}

KNCString clean(std::string_view text)
{
    return KNMimeUtils::cleanToken(KNCString(text), true);
}

// The header keeping `value` as free text under `label`, whatever the factory would make.
KNMimeHeader plainTextHeader(const KNCString& label, const KNCString& value)
{
    auto* body = new KNMimeUnstructuredHeaderImp;
    KNMimeHeader header(body);
    body->setLabel(label);
    body->setValue(value);
    return header;
}

// A header whose body accepts and prints `value`, or nothing.
std::optional<KNMimeHeader> strictHeader(const KNCString& label, const KNCString& value)
{
    try {
        KNMimeHeader header;
        header.fromString(label + ": " + value);
        if (prints(header))
            return header;
    } catch (const KNxmsg&) {
    }
    return std::nullopt;
}

// Content-Type and Content-Disposition values rebuilt from their readable pieces: the type,
// then every parameter that has a token name and an "=", each dropped one reported.
std::optional<KNMimeHeader> salvageParameters(const KNCString& label, const KNCString& value, bool isContentType,
                                              const KNMimeFieldReader::Report& report)
{
    const std::vector<std::string_view> pieces = splitOutsideQuotes(value, ';');
    KNCString type;
    if (isContentType) {
        const std::vector<std::string_view> halves = splitOutsideQuotes(pieces[0], '/');
        if (halves.size() != 2)
            return std::nullopt;
        type = clean(halves[0]) + "/" + clean(halves[1]);
    } else {
        type = clean(pieces[0]);
    }
    KNCString rebuilt = type;
    std::vector<KNCString> dropped;
    for (std::size_t i = 1; i < pieces.size(); ++i) {
        const std::string_view piece = pieces[i];
        if (i + 1 == pieces.size() && isAllBlank(piece))
            break; // a trailing ";" adds nothing
        const std::vector<std::string_view> sides = splitOutsideQuotes(piece, '=');
        const KNCString name = sides.size() >= 2 ? clean(sides[0]) : KNCString();
        if (!isToken(name)) {
            dropped.push_back(KNMimeFieldReader::excerpt(piece));
            continue;
        }
        const std::size_t equals = sides[0].size();
        rebuilt += "; " + name + "=" + KNMimeUtils::quoteAndEscape(clean(piece.substr(equals + 1)));
    }
    std::optional<KNMimeHeader> header = strictHeader(label, rebuilt);
    if (header)
        for (const KNCString& piece : dropped)
            report(Kind::InvalidParameter, "parameter \"" + piece + "\" of " + label + " dropped");
    return header;
}

} // namespace

KNCString KNMimeFieldReader::excerpt(std::string_view text)
{
    constexpr std::size_t limit = 60;
    KNCString out;
    for (const char c : text.substr(0, limit)) {
        const auto u = static_cast<unsigned char>(c);
        out += (u < ' ' || u == 0x7f) ? '?' : c;
    }
    if (text.size() > limit)
        out += "...";
    return out;
}

std::optional<KNMimeHeader> KNMimeFieldReader::read(std::string_view field, const Report& report)
{
    const std::size_t colon = field.find(':');
    const std::string_view rawLabel = field.substr(0, colon);
    // The common case reads exactly as the strict parser does, checking only that a typed
    // value prints (free text always does once the label is printable).
    if (isPlainLabel(rawLabel)) {
        try {
            KNCString label(rawLabel);
            KNMimeHeader header = headerFactory().create(label);
            header.body()->setLabel(std::move(label));
            KNCString value = KNMimeScan::unfoldAndTrim(field.substr(colon + 1));
            if (!value.empty()) // an empty value keeps the body's default, as when parsing strictly
                header.body()->takeValueFromString(std::move(value));
            if (prints(header))
                return header;
        } catch (const KNxmsg&) {
        }
    }
    return repair(field, colon, report);
}

std::optional<KNMimeHeader> KNMimeFieldReader::repair(std::string_view field, std::size_t colon, const Report& report)
{
    const std::string_view rawLabel = field.substr(0, colon);
    const KNCString label = clean(rawLabel);
    if (!isPrintableLabel(label) || rawLabel.find_first_of("\"(") != std::string_view::npos) {
        report(Kind::InvalidHeaderName, "header \"" + excerpt(field) + "\" dropped: its name cannot be printed");
        return std::nullopt;
    }
    if (rawLabel.size() != label.size())
        report(Kind::BlankBeforeColon, "blank between \"" + label + "\" and its colon removed");

    const KNCString value = KNMimeUtils::unfoldAndTrim(KNCString(field.substr(colon + 1)));
    if (std::optional<KNMimeHeader> header = strictHeader(label, value))
        return header;

    const bool isContentType = knEqualsIgnoreCase(label, KNMimeContentTypeHeader::Label);
    if (isContentType || knEqualsIgnoreCase(label, KNMimeContentDispositionHeader::Label)) {
        if (std::optional<KNMimeHeader> header = salvageParameters(label, value, isContentType, report))
            return header;
    }
    if (isContentType)
        report(Kind::InvalidContentType, "Content-Type \"" + excerpt(value) + "\" unreadable: kept as text, read as text/plain");
    else
        report(Kind::InvalidHeaderValue, label + " value \"" + excerpt(value) + "\" kept as plain text");
    return plainTextHeader(label, value);
}
