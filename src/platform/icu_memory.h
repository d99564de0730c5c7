#pragma once

#include <unicode/utypes.h>

#include <new>

namespace Kestrona::Platform {

// To be asked before a failure of ICU is answered with what stands for an unknown name: a lack of memory must not give
// another order, another date or another text.
inline void ThrowIfNoMemory(UErrorCode error) {
    if (error == U_MEMORY_ALLOCATION_ERROR) {
        throw std::bad_alloc();
    }
}

} // namespace Kestrona::Platform
