#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>

namespace Kestrona::Data::MemoryResident {

// Fills the list of a record with every key that it can hold, or with those that the related field's record lists, and
// makes the lists beside it as long.
void SelectAllEntries(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record);

} // namespace Kestrona::Data::MemoryResident
