#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <span>

namespace Kestrona::Data::MemoryResident {

// Takes the keys of deleted records of a format out of every list that refers to it, and the cells beside them out of
// the lists that run parallel. Lists that keep the keys of deleted records are left alone.
void RemoveKeysFromLists(IMemoryResidentData& store, std::int32_t format, std::span<const double> keys);

} // namespace Kestrona::Data::MemoryResident
