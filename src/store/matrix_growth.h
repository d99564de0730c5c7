#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>

namespace Kestrona::Data::MemoryResident {

// Opens a cell, or a row or column of cells, at `record` in every matrix that the format dimensions. The record has
// been inserted already.
//
// Which fields those are is remembered as long as records are inserted into one format and the store's operations do
// not change the schema.
void GrowMatrices(IMemoryResidentData& store, std::int32_t format, std::int32_t record);

} // namespace Kestrona::Data::MemoryResident
