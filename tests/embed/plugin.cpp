// A shared library with the static knmime linked into it.
#include <mime/KNMime.h>

KNCString pluginMediaType(const KNCString& text)
{
    KNMimePart part;
    part.fromString(text);
    const KNMimeContentTypeHeader header(part.getHeader(part.findHeader(KNMimeContentTypeHeader::Label, 0)));
    return header.getContentType().getMediaType();
}
