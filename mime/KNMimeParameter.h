#ifndef KN_MIME_KNMIMEPARAMETER_H
#define KN_MIME_KNMIMEPARAMETER_H

/// @class KNMimeParameter
/// One name=value parameter of a structured header value, held as a plain value: the name
/// as given, the value unquoted and unescaped.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>

#include <string_view>

class KNMIME_EXPORT KNMimeParameter {
public:
    KNMimeParameter();
    /// The parameter `name`=`value`; both are checked only when printed.
    KNMimeParameter(const KNCString& name, const KNCString& value);

    /// The name as written (compare it ignoring case).
    KNCString getName() const;
    /// Replaces the name.
    void setName(const KNCString& name);
    /// The value, unquoted.
    KNCString getValue() const;
    /// Replaces the value (unquoted; asString quotes it).
    void setValue(const KNCString& value);

    /// Parses name=value (split at the first '=' outside quotes and comments, both sides
    /// cleaned and unquoted); KNMimeParseError when there is no '=', leaving this unchanged.
    void fromString(const KNCString& text);
    /// name="value" with the value always quoted; KNMimeError when the name is no token.
    KNCString asString() const;

private:
    friend class KNMimeParameterList;
    friend KNMIME_EXPORT bool operator==(const KNMimeParameter& a, const KNMimeParameter& b);

    static KNMimeParameter parsed(std::string_view text);
    void appendTo(KNCString& out) const;

    KNCString name_;
    KNCString value_;
};

/// Names compare ignoring case, values exactly.
/// @relates KNMimeParameter
KNMIME_EXPORT bool operator==(const KNMimeParameter& a, const KNMimeParameter& b);
/// The negation of operator==.
/// @relates KNMimeParameter
KNMIME_EXPORT bool operator!=(const KNMimeParameter& a, const KNMimeParameter& b);

#endif
