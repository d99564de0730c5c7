#include "soak/memory.h"

#include "model/side.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <fstream>
#include <new>

namespace {

std::array<std::atomic<std::size_t>, 2> held{}; // by side: the library, the twin

#ifdef KESTRONA_SOAK_COUNTS_MEMORY

// Stands before each block, so that a block is counted off the side that asked for it, whoever frees it.
struct alignas(std::max_align_t) BlockHead {
    std::size_t size;
    bool is_twin;
};

#endif

} // namespace

#ifdef KESTRONA_SOAK_COUNTS_MEMORY

void* operator new(std::size_t size) {
    void* const block = std::malloc(sizeof(BlockHead) + size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    auto* const head = new (block) BlockHead{size, Kestrona::Model::is_twin_side};
    held[head->is_twin ? 1 : 0] += size;
    return head + 1;
}

void operator delete(void* memory) noexcept {
    if (memory != nullptr) {
        BlockHead* const head = static_cast<BlockHead*>(memory) - 1;
        held[head->is_twin ? 1 : 0] -= head->size;
        std::free(head);
    }
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    operator delete(memory);
}

#endif

namespace Kestrona::Soak {

Memory MeasureMemory() {
    std::ifstream file("/proc/self/statm");
    std::size_t all = 0;
    std::size_t resident = 0;
    file >> all >> resident;
    return {
        .library = held[0], .twin = held[1], .resident = resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE))};
}

} // namespace Kestrona::Soak
