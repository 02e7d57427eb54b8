#include <foundation/KNMessage.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>

namespace {
std::atomic<KNMessage::CatalogueLookup> catalogueLookup{nullptr};
}

void KNMessage::setCatalogueLookup(CatalogueLookup lookup) noexcept
{
    catalogueLookup.store(lookup, std::memory_order_release);
}

const char* KNMessage::formatFor(const KNCatMsg* msg) noexcept
{
    if (msg == nullptr)
        return "";
    if (CatalogueLookup lookup = catalogueLookup.load(std::memory_order_acquire)) {
        if (const char* translated = lookup(msg->domainName, msg->msgNumber))
            return translated;
    }
    return msg->defaultText;
}

KNCString KNMessage::format(const char* fmt, ...)
{
    std::va_list args;
    va_start(args, fmt);
    std::va_list measure;
    va_copy(measure, args);
    const int length = std::vsnprintf(nullptr, 0, fmt, measure);
    va_end(measure);
    KNCString text;
    if (length > 0) {
        text.resize(static_cast<std::size_t>(length));
        std::vsnprintf(text.data(), text.size() + 1, fmt, args);
    }
    va_end(args);
    return text;
}
