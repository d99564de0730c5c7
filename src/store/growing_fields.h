#pragma once

#include <kestrona/memory_resident_data.h>
#include <kestrona/types.h>

#include <cstdint>
#include <vector>

namespace Kestrona::Data::MemoryResident {

// The matrix fields whose matrices grow with the records of the format, in the order of formats and fields. Valid until
// the next call. The last answer is kept; see matrix_growth.h for how long.
const std::vector<TableColumn>& GrowingFields(IMemoryResidentData& store, std::int32_t format);

} // namespace Kestrona::Data::MemoryResident
