#pragma once

#include <cstddef>

// What the process holds.
namespace Kestrona::Soak {

// Whether the memory that is asked for is counted. A sanitizer has operators of its own, which find leaks themselves,
// and keeps what is freed for a while.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kCountsMemory = false;
#else
inline constexpr bool kCountsMemory = true;
#define KESTRONA_SOAK_COUNTS_MEMORY
#endif

struct Memory {
    std::size_t library = 0;  // bytes asked of operator new by the library and its callers, and not given back
    std::size_t twin = 0;     // likewise by the twin
    std::size_t resident = 0; // bytes of the process in memory
};

Memory MeasureMemory();

} // namespace Kestrona::Soak
