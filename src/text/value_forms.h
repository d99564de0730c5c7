#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstddef>
#include <cstdint>
#include <string>

// The forms that a value can be shown in.
namespace Kestrona::Text {

inline constexpr std::int32_t kToggleSetWord = 0x697d;
inline constexpr std::int32_t kToggleClearedWord = 0x697e;
inline constexpr std::int32_t kSecondUnsetWord = 0x69a6;
inline constexpr std::int32_t kNoFamilyWord = 0x6a03;

// A value on its way to its text.
struct ShownValue {
    Data::MemoryResident::IMemoryResidentData& store;
    Data::MemoryResident::field_info& info; // of the field
    std::int32_t format;
    std::int32_t field;
    std::int32_t record;
    double value;
    std::int32_t list_index;
};

// Requires: a class word that exists.
inline bool HasClass(const Data::MemoryResident::field_info& info, Class c) {
    return (info.current.classWords[static_cast<std::size_t>(c.word)] & c.mask) == c.mask;
}

// The host's word.
std::wstring Message(std::int32_t id);

// What a value of the reference type stands for. `text` stays as it is where the target shows none.
void ShowReference(const ShownValue& shown, std::wstring& text);

} // namespace Kestrona::Text
