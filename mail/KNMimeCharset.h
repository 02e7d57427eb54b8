#ifndef KN_MAIL_KNMIMECHARSET_H
#define KN_MAIL_KNMIMECHARSET_H

// Conversion of text in a named charset to UTF-8, forgiving as mail needs: common aliases are
// understood, bytes that do not convert become U+FFFD, and an unknown charset is reported.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>

#include <string_view>

/// Converts text in any charset the system's iconv knows (plus the aliases mail uses) to UTF-8.
/// Nothing here throws for bad input: problems are reported in the result.
class KNMIME_EXPORT KNMimeCharset {
public:
    KNMimeCharset() = delete;

    /// The outcome of one conversion.
    struct Conversion {
        /// The converted text, always valid UTF-8.
        KNCString text;
        /// True when some bytes could not be converted and became U+FFFD.
        bool lossy = false;
        /// True when the charset was not known; the text was then read as UTF-8.
        bool unknownCharset = false;
    };

    /// The name a mail charset label is converted under: lower-cased and trimmed, with the
    /// aliases mail uses resolved ("latin1" and "iso-8859-1" give "windows-1252", "utf8" gives
    /// "utf-8", "ks_c_5601-1987" gives "cp949", "gb2312" gives "gbk", "x-unknown" gives
    /// "x-unknown"); an empty label gives "us-ascii".
    static KNCString canonicalName(std::string_view charset);
    /// True when text in `charset` can be converted (a built-in charset or one iconv opens).
    static bool isKnown(std::string_view charset);
    /// `bytes` in `charset` as UTF-8. US-ASCII, UTF-8, ISO-8859-1 and windows-1252 are
    /// converted without iconv; "x-unknown" (and friends) is read as UTF-8 when valid and as
    /// windows-1252 otherwise; an unknown charset is read as UTF-8 and flagged.
    static Conversion toUtf8(std::string_view bytes, std::string_view charset);
    /// True when `text` is valid UTF-8 (no overlong forms, surrogates or values past U+10FFFF).
    static bool isValidUtf8(std::string_view text) noexcept;
    /// Appends the UTF-8 form of `codePoint` (at most U+10FFFF) to `out`.
    static void appendUtf8(KNCString& out, char32_t codePoint);
};

#endif
