#pragma once

#include <kestrona/schema_records.h>

namespace Kestrona::Configuration::Parsers {

// Makes the caches of what is read from a field's classification string, all of them or none. Requires: one thread at a
// time for the field.
void EnsureFieldCaches(Data::MemoryResident::field_info& field);

} // namespace Kestrona::Configuration::Parsers
