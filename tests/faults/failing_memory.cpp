#include "faults/failing_memory.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define KESTRONA_SANITIZED
#endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define KESTRONA_SANITIZED
#endif

namespace Kestrona::Faults {

namespace {

// Plain numbers, as requests come before anything has been constructed. Tests run in one thread.
bool counts = false;
std::int64_t requests = 0;
std::int64_t first_failing = 0;
Shortage kind = Shortage::Once;
std::int64_t live = 0;

bool Fails() {
    if (!counts) {
        return false;
    }
    ++requests;
    const bool is_hit =
        first_failing > 0 && (requests == first_failing || (kind == Shortage::FromThenOn && requests > first_failing));
    if (is_hit) {
        errno = ENOMEM;
    }
    return is_hit;
}

} // namespace

void RunOutOfMemoryAt(std::int64_t number, Shortage shortage) {
    requests = 0;
    first_failing = number;
    kind = shortage;
    counts = true;
}

std::int64_t GiveMemoryAgain() {
    counts = false;
    return requests;
}

std::int64_t LiveBlocks() {
    return live;
}

} // namespace Kestrona::Faults

using Kestrona::Faults::Fails;
using Kestrona::Faults::live;

#ifdef KESTRONA_SANITIZED

void* operator new(std::size_t size) {
    void* const block = Fails() ? nullptr : std::malloc(size == 0 ? 1 : size);
    return block != nullptr ? block : throw std::bad_alloc();
}

// The sanitizers have one of their own, whose blocks are not malloc's.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Fails() ? nullptr : std::malloc(size == 0 ? 1 : size);
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

#else

extern "C" {

// What glibc's own functions of these names are called, too.
void* __libc_malloc(std::size_t size);                          // NOLINT(*-reserved-identifier)
void* __libc_calloc(std::size_t count, std::size_t size);       // NOLINT(*-reserved-identifier)
void* __libc_realloc(void* block, std::size_t size);            // NOLINT(*-reserved-identifier)
void* __libc_memalign(std::size_t alignment, std::size_t size); // NOLINT(*-reserved-identifier)
void __libc_free(void* block);                                  // NOLINT(*-reserved-identifier)

static void* Counted(void* block) {
    live += block != nullptr ? 1 : 0;
    return block;
}

void* malloc(std::size_t size) {
    return Fails() ? nullptr : Counted(__libc_malloc(size));
}

void* calloc(std::size_t nmemb, std::size_t size) {
    return Fails() ? nullptr : Counted(__libc_calloc(nmemb, size));
}

void* realloc(void* ptr, std::size_t size) {
    if (Fails()) {
        return nullptr;
    }
    void* const moved = __libc_realloc(ptr, size);
    live += (moved != nullptr ? 1 : 0) - (ptr != nullptr && (moved != nullptr || size == 0) ? 1 : 0);
    return moved;
}

void* memalign(std::size_t alignment, std::size_t size) {
    return Fails() ? nullptr : Counted(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** memptr, std::size_t alignment, std::size_t size) {
    *memptr = memalign(alignment, size);
    return *memptr != nullptr ? 0 : ENOMEM;
}

void free(void* ptr) {
    live -= ptr != nullptr ? 1 : 0;
    __libc_free(ptr);
}

} // extern "C"

#endif
