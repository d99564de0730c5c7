#pragma once

#include <kestrona/host/definition.h>

// The string tables of a store.

namespace Kestrona::Host::Language {

// Writes the string tables, the constants and the help texts. A table of a name that stands in the store already is
// written anew; other tables stay. False when there was no room for a table.
bool FillTables(const Definition& definition, Data::MemoryResident::IMemoryResidentData& store);

} // namespace Kestrona::Host::Language
