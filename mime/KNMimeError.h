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
    /// The error with the formatted text of a catalogue message.
    explicit KNMimeError(const KNMessage& message);
    /// The error with the text `text`.
    explicit KNMimeError(const KNCString& text);
    ~KNMimeError() override;

    [[noreturn]] void raise() const override;
};

/// The exception for input text that cannot be parsed; catching KNMimeError catches it too.
class KNMIME_EXPORT KNMimeParseError : public KNMimeError {
public:
    /// The error with the formatted text of a catalogue message.
    explicit KNMimeParseError(const KNMessage& message);
    /// The error with the text `text`.
    explicit KNMimeParseError(const KNCString& text);
    ~KNMimeParseError() override;

    [[noreturn]] void raise() const override;
};

/// Throw a copy of the error whose type is the overload's, never a more derived one.
/// @relates KNMimeError
[[noreturn]] KNMIME_EXPORT void KNThrow(const KNMimeError& error);
/// Throws a copy of the parse error as a KNMimeParseError.
/// @relates KNMimeParseError
[[noreturn]] KNMIME_EXPORT void KNThrow(const KNMimeParseError& error);

#endif
