#pragma once

#include <kestrona/store.h>

#include <cstdint>
#include <string>

// Everything that a format's users can see of its records, as text.
namespace Kestrona::Fixtures {

// Values, texts, update numbers and matrices of every record.
std::string DescribeRecords(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format);

// The ids of the matrices, and the scratch row 999900000.
std::string DescribeIdentities(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format);

// The records marked as changed, the keys marked as erased, and the number of changes.
std::string DescribeChanges(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format);

} // namespace Kestrona::Fixtures
