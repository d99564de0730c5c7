#pragma once

#include <kestrona/store.h>

#include <cstdint>

namespace Kestrona::Configuration {

// `KSDLL_CreateDataArrays` for one format.
void MakeColumns(Data::MemoryResident::MemoryResidentData& store, std::int32_t format);

} // namespace Kestrona::Configuration
