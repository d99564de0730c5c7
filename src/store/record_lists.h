#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <vector>

namespace Kestrona::Data::MemoryResident {

// Those of the numbers that are records of the format, ascending, each once.
std::vector<std::int32_t> AscendingRecords(IMemoryResidentData& store, std::int32_t format,
                                           std::vector<std::int32_t> records);

// The lowest record with the key value, -1 for none. Reads the keys one after another while the index is stale: after
// every deletion it is, and building it for one question would cost more than the question.
std::int32_t FindRecordOfKey(IMemoryResidentData& store, std::int32_t format, double key);

} // namespace Kestrona::Data::MemoryResident
