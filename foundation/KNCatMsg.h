#ifndef KN_FOUNDATION_KNCATMSG_H
#define KN_FOUNDATION_KNCATMSG_H

/// @class KNCatMsg
/// One record of a message catalogue: where it belongs, its number, and its printf-style
/// default text. Records are static constants, never freed.

#include <cstdint>

struct KNCatMsg {
    /// The catalogue the message belongs to ("mime_" for the library's own).
    const char* domainName;
    /// The number of the message inside its catalogue.
    std::int32_t msgNumber;
    /// The printf-style text used when no translation is installed.
    const char* defaultText;
};

#endif
