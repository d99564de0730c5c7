#pragma once

#include <kestrona/store.h>

#include <cstdint>

namespace Kestrona::Data::MemoryResident {

// Moves the rows `record` to `last` - 1 of a format one number up, over the row `last`; the row `record` keeps its own
// values. The result is that of CopyItemInfo from each row to the next, from the back to the front: the same values,
// the same records marked as changed, the same number of changes, and the same matrices with the same ids.
void ShiftRowsUp(MemoryResidentData& store, std::int32_t format, std::int32_t record, std::int32_t last);

} // namespace Kestrona::Data::MemoryResident
