#ifndef KN_MIME_KNMIMEMESSAGES_H
#define KN_MIME_KNMIMEMESSAGES_H

// The message catalogue of the library (domain "mime_"): one accessor per message, each
// returning the same constant record on every call. Every text starts with its bracketed
// identifier, so callers can tell errors apart by prefix.

#include <foundation/KNCatMsg.h>
#include <foundation/KNExport.h>

KNMIME_EXPORT const KNCatMsg* knmime_INVALID_HEADER_CONVERSION();
KNMIME_EXPORT const KNCatMsg* knmime_INVALID_TYPE_CONVERSION();
KNMIME_EXPORT const KNCatMsg* knmime_INVALID_MULTIPART_CONVERSION();
KNMIME_EXPORT const KNCatMsg* knmime_KNOWN_HEADER_TYPE();
KNMIME_EXPORT const KNCatMsg* knmime_MISSING_TYPE_SEPARATOR();
KNMIME_EXPORT const KNCatMsg* knmime_MISSING_HEADER_SEPARATOR();
KNMIME_EXPORT const KNCatMsg* knmime_MISSING_HEADER_BODY_SEPARATOR();
KNMIME_EXPORT const KNCatMsg* knmime_MISSING_PARAMETER_SEPARATOR();
KNMIME_EXPORT const KNCatMsg* knmime_MISSING_HEADER();
KNMIME_EXPORT const KNCatMsg* knmime_MISSING_BOUNDARY_PARAMETER();
KNMIME_EXPORT const KNCatMsg* knmime_MISSING_BOUNDARY();
KNMIME_EXPORT const KNCatMsg* knmime_UNKNOWN_ENCODING();
KNMIME_EXPORT const KNCatMsg* knmime_INVALID_BASE64_CHAR();
KNMIME_EXPORT const KNCatMsg* knmime_INVALID_VERSION();
KNMIME_EXPORT const KNCatMsg* knmime_INVALID_LABEL();  // public, though nothing in the library throws it
KNMIME_EXPORT const KNCatMsg* knmime_INVALID_TOKEN();
KNMIME_EXPORT const KNCatMsg* knmime_INVALID_VALUE();
KNMIME_EXPORT const KNCatMsg* knmime_INVALID_CHARSET();
KNMIME_EXPORT const KNCatMsg* knmime_NESTING_TOO_DEEP();  // argument: the nesting limit
KNMIME_EXPORT const KNCatMsg* knmime_CYCLIC_PART();

#endif
