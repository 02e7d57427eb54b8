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
    explicit KNxmsg(KNCString why);
    explicit KNxmsg(const KNMessage& message);
    KNxmsg(const KNxmsg&) = default;
    KNxmsg& operator=(const KNxmsg&) = default;
    ~KNxmsg() override;

    const KNCString& why() const noexcept { return why_; }
    const char* what() const noexcept override;

    /// Throws a copy of this exception as its most derived type; subclasses override it.
    [[noreturn]] virtual void raise() const;

private:
    KNCString why_;
};

#endif
