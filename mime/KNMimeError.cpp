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

// The copy is made inside a noexcept function, straight into the exception object: if
// copying the text fails, the process ends instead of another exception taking this one's place.
void KNThrow(const KNMimeError& error)
{
    throw [&]() noexcept { return KNMimeError(error); }();
}

void KNThrow(const KNMimeParseError& error)
{
    throw [&]() noexcept { return KNMimeParseError(error); }();
}
