#ifndef KN_MAIL_INTERNAL_KNMIMEMAILSCAN_H
#define KN_MAIL_INTERNAL_KNMIMEMAILSCAN_H

// Character tests the sources of the mail layer share; not installed.

namespace KNMimeMailScan {

inline bool isBlank(char c) noexcept
{
    return c == ' ' || c == '\t';
}

inline bool isLineBreak(char c) noexcept
{
    return c == '\r' || c == '\n';
}

// A blank or a line break.
inline bool isSpace(char c) noexcept
{
    return isBlank(c) || isLineBreak(c);
}

} // namespace KNMimeMailScan

#endif
