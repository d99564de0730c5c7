#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <string>
#include <vector>

/// \file
/// The classes of a field by their names.

namespace Kestrona::Tool {

/// Returns the names of the classes that are set, in the order of words and bits: the keyword where a class stands for
/// one, else what it says. A bit without a name comes as "word 3 bit 0x20".
[[nodiscard]] std::vector<std::string> ClassNames(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                                  std::int32_t field);

} // namespace Kestrona::Tool
