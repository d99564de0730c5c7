#pragma once

#include "configuration/auto_list_chain.h"
#include "configuration/classification_finder.h"
#include "configuration/reference_lookup.h"

#include <kestrona/store.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Kestrona::Configuration {

// What one pass over the definition carries along.
struct Resolution {
    explicit Resolution(Data::MemoryResident::MemoryResidentData& store_to_resolve)
        : store(store_to_resolve),
          lookup(store),
          finder(store),
          chain(store, lookup) {}

    Data::MemoryResident::MemoryResidentData& store;
    ReferenceLookup lookup;
    ClassificationFinder finder;
    AutoListChain chain;
};

// The fields of a format that can be resolved, whatever count a host has set.
inline std::int32_t FieldsOf(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format) {
    const Data::MemoryResident::formats_info* info = store.GetFormatInfo(format);
    const std::size_t records = info == nullptr ? 0 : info->fields.size();
    return std::min(store.GetDbFields(format), static_cast<std::int32_t>(records));
}

} // namespace Kestrona::Configuration
