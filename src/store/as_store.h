#pragma once

#include <kestrona/store.h>

namespace Kestrona::Data::MemoryResident {

// The store behind its interface, which has no other implementation.
inline MemoryResidentData& AsStore(IMemoryResidentData& store) {
    return static_cast<MemoryResidentData&>(store);
}

} // namespace Kestrona::Data::MemoryResident
