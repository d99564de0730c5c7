#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <string>

// Fields as the language writes them.

namespace Kestrona::Host::Language {

// The entry of a field, as lines of a format's block.
[[nodiscard]] std::string PrintField(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                     std::int32_t field);

} // namespace Kestrona::Host::Language
