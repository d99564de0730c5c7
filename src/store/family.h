#pragma once

#include <kestrona/find_result.h>
#include <kestrona/memory_resident_data.h>

#include <cstdint>

namespace Kestrona::Data::MemoryResident {

// The record with this key, followed by the records whose FAMILY field names it. Empty when no record has the key.
// Indexes the FAMILY field.
RecordNumbers FamilyRecords(IMemoryResidentData& store, std::int32_t format, double key);

} // namespace Kestrona::Data::MemoryResident
