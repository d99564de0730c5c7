#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <string>
#include <string_view>

/// \file
/// Formats and fields by their names, without a word about those that are not there.

namespace Kestrona::Tool {

/// Returns the name of a format (UTF-8), "" for one without.
[[nodiscard]] std::string FormatName(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format);

/// Returns the format with this name or display name (UTF-8), -1 for none.
[[nodiscard]] std::int32_t FormatNamed(Data::MemoryResident::IMemoryResidentData& store, std::string_view name);

/// Returns the first field of the format with this name (UTF-8), -1 for none.
[[nodiscard]] std::int32_t FieldNamed(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                      std::string_view name);

} // namespace Kestrona::Tool
