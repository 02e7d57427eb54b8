#include <mime/KNMimeMessages.h>

namespace {
constexpr const char* domain = "mime_";

const KNCatMsg KNMIMEMSG_INVALID_HEADER_CONVERSION{domain, 32768, "[INVALID_HEADER_CONVERSION] Unable to convert from \"%s\""};
const KNCatMsg KNMIMEMSG_INVALID_TYPE_CONVERSION{domain, 32769, "[INVALID_TYPE_CONVERSION] Unable to convert from \"%s/%s\""};
const KNCatMsg KNMIMEMSG_INVALID_MULTIPART_CONVERSION{domain, 32770, "[INVALID_MULTIPART_CONVERSION] Unable to convert non-multipart message to multipart"};
const KNCatMsg KNMIMEMSG_KNOWN_HEADER_TYPE{domain, 32771, "[KNOWN_HEADER_TYPE] Cannot create KNMimeGenericHeader for known type \"%s\""};
const KNCatMsg KNMIMEMSG_MISSING_TYPE_SEPARATOR{domain, 32772, "[MISSING_TYPE_SEPARATOR] Unable to separate media type from subtype"};
const KNCatMsg KNMIMEMSG_MISSING_HEADER_SEPARATOR{domain, 32773, "[MISSING_HEADER_SEPARATOR] Unable to separate label from value"};
const KNCatMsg KNMIMEMSG_MISSING_HEADER_BODY_SEPARATOR{domain, 32774, "[MISSING_HEADER_BODY_SEPARATOR] Unable to separate message headers from body"};
const KNCatMsg KNMIMEMSG_MISSING_PARAMETER_SEPARATOR{domain, 32775, "[MISSING_PARAMETER_SEPARATOR] Unable to separate parameter name from value"};
const KNCatMsg KNMIMEMSG_MISSING_HEADER{domain, 32776, "[MISSING_HEADER] The required header \"%s\" not found"};
const KNCatMsg KNMIMEMSG_MISSING_BOUNDARY_PARAMETER{domain, 32777, "[MISSING_BOUNDARY_PARAMETER] The required \"boundary\" parameter on \"Content-Type\" not found"};
const KNCatMsg KNMIMEMSG_MISSING_BOUNDARY{domain, 32778, "[MISSING_BOUNDARY] Unable to find boundary string \"%s\" in message body"};
const KNCatMsg KNMIMEMSG_UNKNOWN_ENCODING{domain, 32779, "[UNKNOWN_ENCODING] The encoding \"%s\" is not recognized"};
const KNCatMsg KNMIMEMSG_INVALID_BASE64_CHAR{domain, 32780, "[INVALID_BASE64_CHAR] '%c' is not a valid base64 character"};
const KNCatMsg KNMIMEMSG_INVALID_VERSION{domain, 32781, "[INVALID_VERSION] The following is not a valid version:  \"%s\""};
const KNCatMsg KNMIMEMSG_INVALID_LABEL{domain, 32782, "[INVALID_LABEL] The following is not a valid label:  \"%s\""};
const KNCatMsg KNMIMEMSG_INVALID_TOKEN{domain, 32783, "[INVALID_TOKEN] The following is not a valid token:  \"%s\""};
const KNCatMsg KNMIMEMSG_INVALID_VALUE{domain, 32784, "[INVALID_VALUE] The following is not a valid header value:  \"%s\""};
const KNCatMsg KNMIMEMSG_INVALID_CHARSET{domain, 32785, "[INVALID_CHARSET] The following is not a valid charset:  \"%s\""};
const KNCatMsg KNMIMEMSG_NESTING_TOO_DEEP{domain, 32786, "[NESTING_TOO_DEEP] Multipart nesting exceeds %u levels"};
const KNCatMsg KNMIMEMSG_CYCLIC_PART{domain, 32787, "[CYCLIC_PART] A multipart cannot contain itself"};
} // namespace

const KNCatMsg* knmime_INVALID_HEADER_CONVERSION()
{
    return &KNMIMEMSG_INVALID_HEADER_CONVERSION;
}

const KNCatMsg* knmime_INVALID_TYPE_CONVERSION()
{
    return &KNMIMEMSG_INVALID_TYPE_CONVERSION;
}

const KNCatMsg* knmime_INVALID_MULTIPART_CONVERSION()
{
    return &KNMIMEMSG_INVALID_MULTIPART_CONVERSION;
}

const KNCatMsg* knmime_KNOWN_HEADER_TYPE()
{
    return &KNMIMEMSG_KNOWN_HEADER_TYPE;
}

const KNCatMsg* knmime_MISSING_TYPE_SEPARATOR()
{
    return &KNMIMEMSG_MISSING_TYPE_SEPARATOR;
}

const KNCatMsg* knmime_MISSING_HEADER_SEPARATOR()
{
    return &KNMIMEMSG_MISSING_HEADER_SEPARATOR;
}

const KNCatMsg* knmime_MISSING_HEADER_BODY_SEPARATOR()
{
    return &KNMIMEMSG_MISSING_HEADER_BODY_SEPARATOR;
}

const KNCatMsg* knmime_MISSING_PARAMETER_SEPARATOR()
{
    return &KNMIMEMSG_MISSING_PARAMETER_SEPARATOR;
}

const KNCatMsg* knmime_MISSING_HEADER()
{
    return &KNMIMEMSG_MISSING_HEADER;
}

const KNCatMsg* knmime_MISSING_BOUNDARY_PARAMETER()
{
    return &KNMIMEMSG_MISSING_BOUNDARY_PARAMETER;
}

const KNCatMsg* knmime_MISSING_BOUNDARY()
{
    return &KNMIMEMSG_MISSING_BOUNDARY;
}

const KNCatMsg* knmime_UNKNOWN_ENCODING()
{
    return &KNMIMEMSG_UNKNOWN_ENCODING;
}

const KNCatMsg* knmime_INVALID_BASE64_CHAR()
{
    return &KNMIMEMSG_INVALID_BASE64_CHAR;
}

const KNCatMsg* knmime_INVALID_VERSION()
{
    return &KNMIMEMSG_INVALID_VERSION;
}

const KNCatMsg* knmime_INVALID_LABEL()
{
    return &KNMIMEMSG_INVALID_LABEL;
}

const KNCatMsg* knmime_INVALID_TOKEN()
{
    return &KNMIMEMSG_INVALID_TOKEN;
}

const KNCatMsg* knmime_INVALID_VALUE()
{
    return &KNMIMEMSG_INVALID_VALUE;
}

const KNCatMsg* knmime_INVALID_CHARSET()
{
    return &KNMIMEMSG_INVALID_CHARSET;
}

const KNCatMsg* knmime_NESTING_TOO_DEEP()
{
    return &KNMIMEMSG_NESTING_TOO_DEEP;
}

const KNCatMsg* knmime_CYCLIC_PART()
{
    return &KNMIMEMSG_CYCLIC_PART;
}
