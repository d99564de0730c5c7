#pragma once

#include <kestrona/store.h>

namespace Kestrona::Configuration::Compiled {

// Points table Y of the fields that share or override another field of their format at that field, by the name in their
// classification string. For a definition that is read but not resolved, before its columns are made. Says nothing: a
// field whose name is not found, or that names itself, points nowhere.
void SetSharedColumns(Data::MemoryResident::MemoryResidentData& store);

} // namespace Kestrona::Configuration::Compiled
