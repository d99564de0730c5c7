#pragma once

#include <kestrona/memory_resident_data.h>
#include <kestrona/types.h>

#include <cstdint>
#include <vector>

namespace Kestrona::Data::MemoryResident {

// The matrix fields whose matrices grow with the records of the format, in the order of formats and fields. Valid until
// the next call. The last answer is kept until another format or store is asked about, or `ForgetGrowingFields`.
const std::vector<TableColumn>& GrowingFields(IMemoryResidentData& store, std::int32_t format);

// Whoever changes what the answer depends on calls this: which formats stand and are loadable, which fields they have,
// and the types, classes, dimensions and identity columns of those. The end of a store is such a change.
void ForgetGrowingFields();

} // namespace Kestrona::Data::MemoryResident
