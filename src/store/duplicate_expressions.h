#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>

namespace Kestrona::Data::MemoryResident {

// Compiles the EVALUATE and HIDDEN IF expressions of a duplicate for that format; one that cannot be compiled is
// reported, and the field is left without. The module has no compiler yet: like the fields that they were made from,
// those of a duplicate keep their expressions as text only.
void CompileDuplicatedExpressions(IMemoryResidentData& store, std::int32_t format);

} // namespace Kestrona::Data::MemoryResident
