#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>

namespace Kestrona::Data::MemoryResident {

// Makes the matrices of a record that has been added at the end of a format, and gives those of the other records the
// size that they must have.
void MakeMatricesOfNewRecord(IMemoryResidentData& store, std::int32_t format);

} // namespace Kestrona::Data::MemoryResident
