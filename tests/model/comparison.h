#pragma once

#include "model/twin.h"

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <string>

// What a store and its twin disagree about: the first difference, "" for none.
namespace Kestrona::Model {

// Every field of a record; with `has_updates` its update number too, which no file holds.
std::string RecordDifference(Data::MemoryResident::IMemoryResidentData& store, const Twin& twin, std::int32_t format,
                             std::int32_t record, bool has_updates = true);
// The number of records.
std::string SizeDifference(Data::MemoryResident::IMemoryResidentData& store, const Twin& twin, std::int32_t format);
// Every record.
std::string FormatDifference(Data::MemoryResident::IMemoryResidentData& store, const Twin& twin, std::int32_t format,
                             bool has_updates = true);
// Every format.
std::string StoreDifference(Data::MemoryResident::IMemoryResidentData& store, const Twin& twin,
                            bool has_updates = true);

} // namespace Kestrona::Model
