#ifndef KN_MIME_INTERNAL_KNMIMEHEADERARENA_H
#define KN_MIME_INTERNAL_KNMIMEHEADERARENA_H

// Memory for the header bodies a parse makes: carved one after another out of slabs that
// the parse's headers share, instead of one allocation each. A message with many header
// fields then costs a few slab allocations rather than one per field, and its bodies lie
// together in memory. Not installed: internal to the library.
//
// A slab is freed when its last body is, whichever thread frees it; until then every body
// in it keeps the whole slab (at most 64 KB) alive. Outside a parse each body is allocated
// on its own.

#include <cstddef>

namespace KNMimeHeaderArena {

// Header bodies made on this thread while a Scope lives come from slabs; scopes nest, the
// outermost one decides.
class Scope {
public:
    Scope() noexcept;
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
};

// Memory for a body of `size` bytes, aligned for any type; std::bad_alloc when there is none.
void* allocate(std::size_t size);

// Gives back memory from allocate() for a body of `size` bytes.
void release(void* body, std::size_t size) noexcept;

} // namespace KNMimeHeaderArena

#endif
