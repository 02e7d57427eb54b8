#ifndef KN_FOUNDATION_KNCATMSG_H
#define KN_FOUNDATION_KNCATMSG_H

/// @class KNCatMsg
/// One record of a message catalogue: where it belongs, its number, and its printf-style
/// default text. Records are static constants, never freed.

#include <cstdint>

struct KNCatMsg {
    const char* domainName;
    std::int32_t msgNumber;
    const char* defaultText;
};

#endif
