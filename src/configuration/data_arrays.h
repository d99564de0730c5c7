#pragma once

#include <kestrona/store.h>

#include <cstdint>

namespace Kestrona::Configuration {

// Makes the columns of every field of one format. Shared columns and overrides are made after the columns that they
// lean on.
void MakeColumns(Data::MemoryResident::MemoryResidentData& store, std::int32_t format);

} // namespace Kestrona::Configuration
