#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <string>

/// \file
/// What a field is, in words.

namespace Kestrona::Tool {

/// Returns the field's kind: "integer", "date", "text", "list" and the like, with ", calculated" where it applies.
[[nodiscard]] std::string TypeName(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                   std::int32_t field);

/// Returns the default of a new cell, "" for one that is unset or has no single value.
[[nodiscard]] std::string DefaultText(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                      std::int32_t field);

/// Returns "Format(Field)" for a DATABASE reference, "Format x Format" for the dimensions of a matrix, else "".
[[nodiscard]] std::string ReferenceText(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                        std::int32_t field);

/// Returns the names of the formats that the format's fields refer to, each once.
[[nodiscard]] std::string ReferredFormats(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format);

} // namespace Kestrona::Tool
