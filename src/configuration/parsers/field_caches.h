#pragma once

#include <kestrona/schema_records.h>

#include <string>
#include <vector>

namespace Kestrona::Configuration::Parsers {

// Makes the caches of what is read from a field's classification string, all of them or none. Requires: one thread at a
// time for the field.
void EnsureFieldCaches(Data::MemoryResident::field_info& field);

// What the string holds, parsed at the first call and kept. The references stay until the string is set.

// None without the class kSubstitute.
const std::vector<SubstPair>& KeptSubstitutes(Data::MemoryResident::field_info& field);
const NumberFormat& KeptNumberFormat(Data::MemoryResident::field_info& field);
// The name behind TABLE, "" for none.
const std::wstring& KeptStringTableName(Data::MemoryResident::field_info& field);

} // namespace Kestrona::Configuration::Parsers
