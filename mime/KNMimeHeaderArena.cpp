#include <mime/internal/KNMimeHeaderArena.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <new>

// Under AddressSanitizer a body's memory is poisoned while it is not handed out, so that a
// use after free is caught for each body, not only once its whole slab is gone.
#if defined(__SANITIZE_ADDRESS__)
#define KN_HEADER_ARENA_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KN_HEADER_ARENA_ASAN 1
#endif
#endif
#ifdef KN_HEADER_ARENA_ASAN
#include <sanitizer/asan_interface.h>
#define KN_POISON(address, size) ASAN_POISON_MEMORY_REGION(address, size)
#define KN_UNPOISON(address, size) ASAN_UNPOISON_MEMORY_REGION(address, size)
#else
#define KN_POISON(address, size) ((void)(address), (void)(size))
#define KN_UNPOISON(address, size) ((void)(address), (void)(size))
#endif

namespace {

constexpr std::size_t alignment = alignof(std::max_align_t);
// Each block starts with the slab it belongs to (null for a block of its own), padded so
// that the body after it stays aligned.
constexpr std::size_t prefix = alignment;
constexpr std::size_t firstSlab = 2048;
constexpr std::size_t largestSlab = 64 * 1024;

// The count of a slab starts this high and drops by one per body freed. When the parse is
// done with the slab it subtracts the bias less the number of bodies it placed there, so
// the count reaches zero exactly when the last of them is gone, whichever comes last.
constexpr std::ptrdiff_t bias = PTRDIFF_MAX / 2;

struct alignas(alignment) Slab {
    explicit Slab(std::size_t bytes) noexcept : size(bytes) {}
    std::atomic<std::ptrdiff_t> live{bias};
    std::size_t size; // including this header
};

// The slab the current parse on this thread fills. Plain data, so that it needs no guard
// and stays usable while the thread's objects are destroyed.
struct Filling {
    Slab* slab = nullptr;
    char* next = nullptr;
    char* end = nullptr;
    std::ptrdiff_t placed = 0;
    std::size_t nextSize = firstSlab;
    unsigned scopes = 0;
};

// Initial-exec where the compiler offers it: the library's few bytes of thread storage are
// then reached without a call per body.
#if defined(__GNUC__) && defined(__ELF__)
__attribute__((tls_model("initial-exec")))
#endif
thread_local Filling filling;

constexpr std::size_t roundUp(std::size_t n) noexcept
{
    return (n + alignment - 1) / alignment * alignment;
}

void freeSlab(Slab* slab) noexcept
{
    KN_UNPOISON(slab, slab->size);
    slab->~Slab();
    ::operator delete(static_cast<void*>(slab));
}

// The parse places nothing more in the slab it is filling.
void retire(Filling& f) noexcept
{
    if (f.slab == nullptr)
        return;
    const std::ptrdiff_t handOver = bias - f.placed;
    if (f.slab->live.fetch_sub(handOver, std::memory_order_acq_rel) == handOver)
        freeSlab(f.slab);
    f.slab = nullptr;
    f.next = f.end = nullptr;
    f.placed = 0;
}

void startSlab(Filling& f, std::size_t need)
{
    const std::size_t size = need > f.nextSize - sizeof(Slab) ? need + sizeof(Slab) : f.nextSize;
    char* memory = static_cast<char*>(::operator new(size));
    retire(f);
    f.slab = new (memory) Slab(size);
    f.next = memory + sizeof(Slab);
    f.end = memory + size;
    KN_POISON(f.next, size - sizeof(Slab));
    if (f.nextSize < largestSlab)
        f.nextSize *= 2;
}

char* withOwner(char* block, Slab* slab) noexcept
{
    std::memcpy(block, &slab, sizeof slab);
    return block + prefix;
}

} // namespace

namespace KNMimeHeaderArena {

Scope::Scope() noexcept
{
    if (filling.scopes++ == 0)
        filling.nextSize = firstSlab;
}

Scope::~Scope()
{
    if (--filling.scopes == 0)
        retire(filling);
}

void* allocate(std::size_t size)
{
    Filling& f = filling;
    if (f.scopes == 0)
        return withOwner(static_cast<char*>(::operator new(prefix + size)), nullptr);
    const std::size_t need = prefix + roundUp(size);
    if (static_cast<std::size_t>(f.end - f.next) < need)
        startSlab(f, need);
    char* const block = f.next;
    f.next += need;
    ++f.placed;
    KN_UNPOISON(block, need);
    return withOwner(block, f.slab);
}

void release(void* body, std::size_t size) noexcept
{
    if (body == nullptr)
        return;
    char* const block = static_cast<char*>(body) - prefix;
    Slab* slab;
    std::memcpy(&slab, block, sizeof slab);
    if (slab == nullptr) {
        ::operator delete(static_cast<void*>(block));
        return;
    }
    KN_POISON(block, prefix + roundUp(size));
    if (slab->live.fetch_sub(1, std::memory_order_acq_rel) == 1)
        freeSlab(slab);
}

} // namespace KNMimeHeaderArena
