#ifndef KN_MAIL_INTERNAL_KNMIMEMAILSCAN_H
#define KN_MAIL_INTERNAL_KNMIMEMAILSCAN_H

// Character tests the sources of the mail layer share; not installed.

namespace KNMimeMailScan {

// The value of a hexadecimal digit (either case), or -1.
inline int hexValue(char c) noexcept
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

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
