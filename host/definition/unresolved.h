#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <string>

// Takes what the resolution of a definition added to a field off again.

namespace Kestrona::Host::Language {

// The classification string before resolution: without the word that marks matrices of two formats, and without the
// substitutes that stand for REMOTE fields.
[[nodiscard]] std::wstring UnresolvedClassification(Data::MemoryResident::IMemoryResidentData& store,
                                                    std::int32_t format, std::int32_t field);

// The bits of a class word that resolution may have given this field, whose classification is `classification`.
[[nodiscard]] std::uint32_t BitsFromResolution(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                               std::int32_t field, std::wstring_view classification, std::int32_t word);

} // namespace Kestrona::Host::Language
