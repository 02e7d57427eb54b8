#ifndef KN_MAIL_KNMIMEEXTENDEDPARAMETERS_H
#define KN_MAIL_KNMIMEEXTENDEDPARAMETERS_H

// The parameters of a structured header value (Content-Type, Content-Disposition) read
// forgivingly, with RFC 2231 charsets and continuations decoded to UTF-8.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>
#include <mime/KNMimeParameter.h>

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

/// A leading value ("text/plain", "attachment") and its parameters as written, looked up by
/// name with RFC 2231 (`name*=charset'lang'%XX`, `name*0*=` / `name*1=` continuations in any
/// order) and RFC 2047 encoded words decoded to UTF-8. Reading never throws.
class KNMIME_EXPORT KNMimeExtendedParameters {
public:
    /// No leading value, no parameters.
    KNMimeExtendedParameters();

    /// Reads a whole header value "value; name=value; ...": quoted values are unquoted, comments
    /// outside quotes dropped, a parameter without "=" skipped, an unterminated quote runs to
    /// the end.
    static KNMimeExtendedParameters fromHeaderValue(std::string_view value);

    /// The leading value, trimmed and lower-cased, without comments ("text/plain").
    const KNCString& getValue() const { return value_; }
    /// Sets the leading value as given.
    void setValue(std::string_view value);
    /// Appends a parameter as written (name as given, value unquoted, undecoded).
    void add(std::string_view name, std::string_view value);
    /// The number of parameters as written (each continuation counts).
    std::size_t getCount() const { return parameters_.size(); }
    /// Parameter i as written: its name and its unquoted, undecoded value.
    const std::pair<KNCString, KNCString>& getRaw(std::size_t i) const { return parameters_.at(i); }

    /// The value of parameter `name` (ignoring case) in UTF-8, or nothing when it is absent.
    /// An RFC 2231 form wins over a plain one; continuations are joined in the order of their
    /// numbers whatever order they were written in; the charset of the first section converts
    /// the joined bytes (a split multibyte character is rejoined); a plain value has its
    /// encoded words decoded and raw 8-bit bytes read as UTF-8 or else windows-1252.
    std::optional<KNCString> get(std::string_view name) const;

    /// The parameters that carry `utf8Value` under `name`: one plain parameter when the value
    /// is printable ASCII, else RFC 2231 sections `name*0*`, `name*1*`, ... of UTF-8 with
    /// %-escapes, each value at most `sectionLength` characters long (at least 12), never
    /// splitting an escape. Values are ready for KNMimeParameter (they need no quoting).
    static std::vector<KNMimeParameter> encode(std::string_view name, std::string_view utf8Value,
                                               std::size_t sectionLength = 60);

private:
    KNCString value_;
    std::vector<std::pair<KNCString, KNCString>> parameters_;
};

#endif
