#pragma once

#include <kestrona/memory_resident_data.h>

#include <string>

namespace Kestrona::Host::Language {

// The string tables of a store as statements, constants and help texts among them; "" when there are none.
[[nodiscard]] std::string PrintTables(Data::MemoryResident::IMemoryResidentData& store);

} // namespace Kestrona::Host::Language
