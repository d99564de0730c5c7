#pragma once

#include <kestrona/memory_resident_data.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Kestrona::Configuration {

// The number of fields that a format really has, whatever count a host or a file has set.
inline std::int32_t FieldCount(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format) {
    const Data::MemoryResident::formats_info* info = store.GetFormatInfo(format);
    const std::size_t records = info == nullptr ? 0 : info->fields.size();
    return std::clamp(store.GetDbFields(format), 0, static_cast<std::int32_t>(records));
}

} // namespace Kestrona::Configuration
