#ifndef KN_FOUNDATION_KNMESSAGE_H
#define KN_FOUNDATION_KNMESSAGE_H

/// @class KNMessage
/// A catalogue message formatted printf-style with its arguments: the text an exception carries.

#include <foundation/KNCString.h>
#include <foundation/KNCatMsg.h>
#include <foundation/KNExport.h>

#include <type_traits>

class KNMIME_EXPORT KNMessage {
public:
    /// Optional translation hook: given a record's domain and number, returns the format to
    /// use instead of the record's default text, or null to keep the default.
    using CatalogueLookup = const char* (*)(const char* domainName, std::int32_t msgNumber);

    /// Formats the record's default text with `args`, printf-style; a KNCString argument is
    /// passed as its character data.
    template <class... Args>
    explicit KNMessage(const KNCatMsg* msg, const Args&... args)
        : text_(format(formatFor(msg), vararg(args)...))
    {
    }

    /// The formatted text.
    const KNCString& str() const noexcept { return text_; }

    /// Installs (or, with null, removes) the translation hook for messages built afterwards.
    static void setCatalogueLookup(CatalogueLookup lookup) noexcept;

private:
    static const char* formatFor(const KNCatMsg* msg) noexcept;
    static KNCString format(const char* fmt, ...);

    // Strings travel through the ellipsis as their character data; everything else as is.
    static const char* vararg(const KNCString& s) noexcept { return s.c_str(); }
    static const char* vararg(const char* s) noexcept { return s; }
    template <class T, class = std::enable_if_t<std::is_arithmetic_v<T>>>
    static T vararg(T value) noexcept { return value; }

    KNCString text_;
};

#endif
