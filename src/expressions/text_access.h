#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <string>

// The display text of a field's value, as field reads see it.
namespace Kestrona::Expressions {

// Replaces `text`. `matrix_index` is -1 where no list entry is meant.
void DisplayText(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                 std::int32_t record, double value, std::int32_t matrix_index, std::wstring* text);

} // namespace Kestrona::Expressions
