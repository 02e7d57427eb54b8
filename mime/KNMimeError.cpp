#include <mime/KNMimeError.h>

KNMimeError::KNMimeError(const KNMessage& message) : KNxmsg(message) {}

KNMimeError::KNMimeError(const KNCString& text) : KNxmsg(text) {}

KNMimeError::~KNMimeError() = default;

void KNMimeError::raise() const
{
    throw *this;
}

KNMimeParseError::KNMimeParseError(const KNMessage& message) : KNMimeError(message) {}

KNMimeParseError::KNMimeParseError(const KNCString& text) : KNMimeError(text) {}

KNMimeParseError::~KNMimeParseError() = default;

void KNMimeParseError::raise() const
{
    throw *this;
}

void KNThrow(const KNMimeError& error)
{
    throw KNMimeError(error);
}

void KNThrow(const KNMimeParseError& error)
{
    throw KNMimeParseError(error);
}
