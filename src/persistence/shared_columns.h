#pragma once

#include <kestrona/store.h>

namespace Kestrona::Persistence {

// Finds the fields that ADDITIONAL REFERENCE and OVERRIDE fields lean on, by the names in their classification strings,
// for a definition that comes from a file and is not resolved again. Sets table Y of each, -1 where the format has no
// such other field; reports nothing.
void FindSharedColumns(Data::MemoryResident::MemoryResidentData& store);

} // namespace Kestrona::Persistence
