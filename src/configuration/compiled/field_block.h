#pragma once

#include "configuration/compiled/definition_input.h"

#include <kestrona/store.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>

// One field in a definition stream.
namespace Kestrona::Configuration::Compiled {

// Bytes of a field whose two texts are empty: the lengths of the texts, the default value, three 32-bit numbers (type,
// first slot, table), the read-only byte, the dialog level, the class words and the slots.
inline constexpr std::size_t kSmallestFieldBlock =
    2 * sizeof(std::int32_t) + sizeof(double) + 3 * sizeof(std::int32_t) + sizeof(std::uint8_t) + sizeof(std::int16_t) +
    kClassWords * sizeof(std::uint32_t) + kDataSlots * sizeof(std::int32_t);
static_assert(kSmallestFieldBlock == 159);

void WriteField(Data::MemoryResident::MemoryResidentData& store, std::int32_t format, std::int32_t field,
                std::FILE* file);

// Fills a field that the format holds already.
[[nodiscard]] bool ReadField(Data::MemoryResident::MemoryResidentData& store, std::int32_t format, std::int32_t field,
                             DefinitionInput& input);

} // namespace Kestrona::Configuration::Compiled
