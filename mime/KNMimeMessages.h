#ifndef KN_MIME_KNMIMEMESSAGES_H
#define KN_MIME_KNMIMEMESSAGES_H

/// @file
/// The message catalogue of the library (domain "mime_"): one accessor per message, each
/// returning the same constant record on every call. Every text starts with its bracketed
/// identifier, so callers can tell errors apart by prefix.

#include <foundation/KNCatMsg.h>
#include <foundation/KNExport.h>

/// "[INVALID_HEADER_CONVERSION] ...": a header converted to a typed header of another label.
KNMIME_EXPORT const KNCatMsg* knmime_INVALID_HEADER_CONVERSION();
/// "[INVALID_TYPE_CONVERSION] ...": a content type converted to a specialised type it is not.
KNMIME_EXPORT const KNCatMsg* knmime_INVALID_TYPE_CONVERSION();
/// "[INVALID_MULTIPART_CONVERSION] ...": a part that is not multipart used as a multipart.
KNMIME_EXPORT const KNCatMsg* knmime_INVALID_MULTIPART_CONVERSION();
/// "[KNOWN_HEADER_TYPE] ...": a KNMimeGenericHeader asked for a label that has a
/// typed header class.
KNMIME_EXPORT const KNCatMsg* knmime_KNOWN_HEADER_TYPE();
/// "[MISSING_TYPE_SEPARATOR] ...": a media type without its '/'.
KNMIME_EXPORT const KNCatMsg* knmime_MISSING_TYPE_SEPARATOR();
/// "[MISSING_HEADER_SEPARATOR] ...": a header line without its ':'.
KNMIME_EXPORT const KNCatMsg* knmime_MISSING_HEADER_SEPARATOR();
/// "[MISSING_HEADER_BODY_SEPARATOR] ...": an entity without the empty line after its headers.
KNMIME_EXPORT const KNCatMsg* knmime_MISSING_HEADER_BODY_SEPARATOR();
/// "[MISSING_PARAMETER_SEPARATOR] ...": a parameter without its '='.
KNMIME_EXPORT const KNCatMsg* knmime_MISSING_PARAMETER_SEPARATOR();
/// "[MISSING_HEADER] ...": a header the operation needs is not there.
KNMIME_EXPORT const KNCatMsg* knmime_MISSING_HEADER();
/// "[MISSING_BOUNDARY_PARAMETER] ...": a multipart Content-Type without a boundary.
KNMIME_EXPORT const KNCatMsg* knmime_MISSING_BOUNDARY_PARAMETER();
/// "[MISSING_BOUNDARY] ...": a multipart body in which the boundary does not occur.
KNMIME_EXPORT const KNCatMsg* knmime_MISSING_BOUNDARY();
/// "[UNKNOWN_ENCODING] ...": a transfer encoding name the codecs do not know.
KNMIME_EXPORT const KNCatMsg* knmime_UNKNOWN_ENCODING();
/// "[INVALID_BASE64_CHAR] ...": a byte outside the base64 alphabet.
KNMIME_EXPORT const KNCatMsg* knmime_INVALID_BASE64_CHAR();
/// "[INVALID_VERSION] ...": a MIME-Version value that is not two numbers and a dot.
KNMIME_EXPORT const KNCatMsg* knmime_INVALID_VERSION();
/// "[INVALID_LABEL] ...": a header label that cannot be printed.
KNMIME_EXPORT const KNCatMsg* knmime_INVALID_LABEL();  ///< public, though nothing in the library throws it
/// "[INVALID_TOKEN] ...": a name that must be a token and is not, refused when printed.
KNMIME_EXPORT const KNCatMsg* knmime_INVALID_TOKEN();
/// "[INVALID_VALUE] ...": a header value whose printed form would hold a CR or LF outside a fold.
KNMIME_EXPORT const KNCatMsg* knmime_INVALID_VALUE();
/// "[INVALID_CHARSET] ...": a charset name that cannot go into an encoded word.
KNMIME_EXPORT const KNCatMsg* knmime_INVALID_CHARSET();
/// "[NESTING_TOO_DEEP] ...": multipart parts nested deeper than the parser allows.
KNMIME_EXPORT const KNCatMsg* knmime_NESTING_TOO_DEEP();  ///< argument: the nesting limit
/// "[CYCLIC_PART] ...": a multipart inserted into itself or into a part nested in it.
KNMIME_EXPORT const KNCatMsg* knmime_CYCLIC_PART();

#endif
