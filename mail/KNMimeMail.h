#ifndef KN_MAIL_KNMIMEMAIL_H
#define KN_MAIL_KNMIMEMAIL_H

// Everything a caller of the forgiving mail layer uses: charsets, header text, extended
// parameters, body decoding, the message view, addresses and dates (with the strict core).

#include <mail/KNMimeAddress.h>
#include <mail/KNMimeAddressList.h>
#include <mail/KNMimeBodyDecoder.h>
#include <mail/KNMimeCharset.h>
#include <mail/KNMimeDate.h>
#include <mail/KNMimeExtendedParameters.h>
#include <mail/KNMimeHeaderText.h>
#include <mail/KNMimeMessageView.h>
#include <mime/KNMime.h>

#endif
