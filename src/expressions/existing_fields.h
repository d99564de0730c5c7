#pragma once

#include <kestrona/memory_resident_data.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Kestrona::Expressions {

// The number of fields that a format has a record of, whatever count was set: a loop over them ends.
inline std::int32_t ExistingFields(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format) {
    const Data::MemoryResident::formats_info* const info = store.GetFormatInfo(format);
    const std::size_t records = info == nullptr ? 0 : info->fields.size();
    return std::clamp(store.GetDbFields(format), 0, static_cast<std::int32_t>(records));
}

} // namespace Kestrona::Expressions
