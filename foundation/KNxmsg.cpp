#include <foundation/KNxmsg.h>

#include <foundation/KNMessage.h>

#include <utility>

KNxmsg::KNxmsg(KNCString why) : why_(std::move(why)) {}

KNxmsg::KNxmsg(const KNMessage& message) : why_(message.str()) {}

KNxmsg::~KNxmsg() = default;

const char* KNxmsg::what() const noexcept
{
    return why_.c_str();
}

void KNxmsg::raise() const
{
    throw *this;
}
