#ifndef KN_MIME_KNMIME_H
#define KN_MIME_KNMIME_H

/// @file
/// Everything a caller of the MIME library uses: parts and multiparts, headers and their
/// factory, parameters, content types and dispositions, the text utilities and the errors.

#include <foundation/KNLibraryVersion.h>
#include <mime/KNMimeContentDescriptionHeader.h>
#include <mime/KNMimeContentDisposition.h>
#include <mime/KNMimeContentDispositionHeader.h>
#include <mime/KNMimeContentDispositionHeaderImp.h>
#include <mime/KNMimeContentDispositionImp.h>
#include <mime/KNMimeContentIdHeader.h>
#include <mime/KNMimeContentLocationHeader.h>
#include <mime/KNMimeContentTransferEncodingHeader.h>
#include <mime/KNMimeContentTransferEncodingHeaderImp.h>
#include <mime/KNMimeContentType.h>
#include <mime/KNMimeContentTypeHeader.h>
#include <mime/KNMimeContentTypeHeaderImp.h>
#include <mime/KNMimeContentTypeImp.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeGenericHeader.h>
#include <mime/KNMimeHeader.h>
#include <mime/KNMimeHeaderFactory.h>
#include <mime/KNMimeHeaderImp.h>
#include <mime/KNMimeMessages.h>
#include <mime/KNMimeMultipart.h>
#include <mime/KNMimeMultipartImp.h>
#include <mime/KNMimeMultipartRelatedType.h>
#include <mime/KNMimeMultipartType.h>
#include <mime/KNMimeParameter.h>
#include <mime/KNMimeParameterList.h>
#include <mime/KNMimePart.h>
#include <mime/KNMimePartImp.h>
#include <mime/KNMimeStringPartImp.h>
#include <mime/KNMimeStructuredHeaderImp.h>
#include <mime/KNMimeTextType.h>
#include <mime/KNMimeTypedHeader.h>
#include <mime/KNMimeUnstructuredHeaderImp.h>
#include <mime/KNMimeUtils.h>
#include <mime/KNMimeVersionHeader.h>
#include <mime/KNMimeVersionHeaderImp.h>

#endif
