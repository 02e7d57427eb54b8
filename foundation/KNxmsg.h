#ifndef KN_FOUNDATION_KNXMSG_H
#define KN_FOUNDATION_KNXMSG_H

/// @class KNxmsg
/// Base of every exception the library throws: a standard exception that carries its text.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>

#include <exception>

class KNMessage;

class KNMIME_EXPORT KNxmsg : public std::exception {
public:
    /// The exception with the text `why`.
    explicit KNxmsg(KNCString why);
    /// The exception with the formatted text of `message`.
    explicit KNxmsg(const KNMessage& message);
    /// Copies carry the same text.
    ///@{
    KNxmsg(const KNxmsg&) = default;
    KNxmsg& operator=(const KNxmsg&) = default;
    ///@}
    ~KNxmsg() override;

    /// The text of the error; for the library's own errors it starts with the bracketed
    /// message identifier, such as `[MISSING_BOUNDARY]`.
    const KNCString& why() const noexcept { return why_; }
    /// The same text as why(), as a C string.
    const char* what() const noexcept override;

    /// Throws a copy of this exception as its most derived type; subclasses override it.
    [[noreturn]] virtual void raise() const;

private:
    KNCString why_;
};

#endif
