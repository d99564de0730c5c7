#pragma once

#include <kestrona/memory_resident_data.h>
#include <kestrona/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// The classes of a field by their names.

namespace Kestrona::Tool {

/// Returns the names of the classes that are set, in the order of words and bits: the keyword where a class stands for
/// one, else what it says. A bit without a name comes as "word 3 bit 0x20".
[[nodiscard]] std::vector<std::string> ClassNames(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                                  std::int32_t field);

/// Returns the class with such a name, no class for any other text.
[[nodiscard]] std::optional<Class> ClassNamed(std::string_view name);

} // namespace Kestrona::Tool
