#ifndef KN_MIME_KNMIMEERROR_H
#define KN_MIME_KNMIMEERROR_H

/// @class KNMimeError
/// The library's two exceptions: KNMimeError when a request is not allowed for these
/// objects or arguments, KNMimeParseError (a KNMimeError) when input text cannot be parsed.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>
#include <foundation/KNMessage.h>
#include <foundation/KNxmsg.h>

class KNMIME_EXPORT KNMimeError : public KNxmsg {
public:
    explicit KNMimeError(const KNMessage& message);
    explicit KNMimeError(const KNCString& text);
    ~KNMimeError() override;

    [[noreturn]] void raise() const override;
};

class KNMIME_EXPORT KNMimeParseError : public KNMimeError {
public:
    explicit KNMimeParseError(const KNMessage& message);
    explicit KNMimeParseError(const KNCString& text);
    ~KNMimeParseError() override;

    [[noreturn]] void raise() const override;
};

/// Throw a copy of the error whose type is the overload's, never a more derived one.
[[noreturn]] KNMIME_EXPORT void KNThrow(const KNMimeError& error);
[[noreturn]] KNMIME_EXPORT void KNThrow(const KNMimeParseError& error);

#endif
