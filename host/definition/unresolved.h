#pragma once

#include <kestrona/host/definition.h>
#include <kestrona/memory_resident_data.h>
#include <kestrona/types.h>

#include <array>
#include <cstdint>
#include <span>
#include <string>

// Takes what the resolution of a definition added to a field off again.

namespace Kestrona::Host::Language {

// The classification string before resolution: without the word that marks matrices of two formats, and without the
// substitutes that stand for REMOTE fields.
[[nodiscard]] std::wstring UnresolvedClassification(Data::MemoryResident::IMemoryResidentData& store,
                                                    std::int32_t format, std::int32_t field);

// The bits of the class words that resolution may have given this field, `words` being its classification.
[[nodiscard]] std::array<std::uint32_t, kClassWords>
BitsFromResolution(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                   std::span<const ClassificationWord> words);

} // namespace Kestrona::Host::Language
