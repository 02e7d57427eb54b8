#ifndef KN_MIME_INTERNAL_KNMIMEENTITYTEXT_H
#define KN_MIME_INTERNAL_KNMIMEENTITYTEXT_H

// The wire format of entities, shared by the part and multipart bodies: parsing works on
// views of the caller's text, so a body byte is copied once into its part however deep it
// is nested; printing reads the boundary from here too. Not installed: internal to the library.

#include <foundation/KNCString.h>
#include <mime/KNMimeHeader.h>
#include <mime/KNMimePart.h>

#include <string_view>

class KNMimeEntityParse;
class KNMimeMultipartImp;
class KNMimePartImp;

namespace KNMimeEntityText {

// The deepest multipart nesting one parse builds. Levels are counted from the outermost
// multipart that parse creates, which is level 1: a message whose multiparts are nested
// 128 deep parses, one more level throws NESTING_TOO_DEEP. For setBody on a multipart body,
// that body is level 1.
constexpr unsigned MaxNesting = 128;

// Parses a complete entity (headers, empty line, body). `enclosingLevels` is the number of
// multipart levels around the text. With `requireMultipart`, a text whose first Content-Type
// is not multipart throws INVALID_MULTIPART_CONVERSION before its body is looked at.
KNMimePart parseEntity(std::string_view text, unsigned enclosingLevels, bool requireMultipart);
// The same for a text that is a view into the text of `parse`.
KNMimePart parseEntity(std::string_view text, unsigned enclosingLevels, bool requireMultipart,
                       KNMimeEntityParse& parse);

// Parses a multipart body into `multipart` (which must hold no parts yet), whose own level
// of nesting is `level`; the boundary comes from its Content-Type header.
void parseMultipartBody(KNMimeMultipartImp& multipart, std::string_view text, unsigned level);
// The same for a text that is a view into the text of `parse`.
void parseMultipartBody(KNMimeMultipartImp& multipart, std::string_view text, unsigned level,
                        KNMimeEntityParse& parse);

// The boundary of the part's first Content-Type header; throws MISSING_HEADER when there is
// none, the type conversion error when it is not multipart, MISSING_BOUNDARY_PARAMETER when
// the boundary is absent or empty.
KNCString boundaryOf(const KNMimePartImp& part);

// True when the header holds a content type whose media type is "multipart" (ignoring case).
// A header whose body is not a content-type body (after the application changed the header
// factory's registrations) counts as not multipart.
bool isMultipartContentType(const KNMimeHeader& header);

} // namespace KNMimeEntityText

#endif
