#pragma once

#include "configuration/compiled/definition_input.h"

#include <kestrona/store.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>

// One field in a definition stream.
namespace Kestrona::Configuration::Compiled {

// Bytes of a field whose two texts are empty.
inline constexpr std::size_t kSmallestFieldBlock = 159;

void WriteField(Data::MemoryResident::MemoryResidentData& store, std::int32_t format, std::int32_t field,
                std::FILE* file);

// Fills a field that the format holds already.
[[nodiscard]] bool ReadField(Data::MemoryResident::MemoryResidentData& store, std::int32_t format, std::int32_t field,
                             DefinitionInput& input);

} // namespace Kestrona::Configuration::Compiled
