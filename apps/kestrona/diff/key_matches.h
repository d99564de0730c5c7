#pragma once

#include "data/exact_cell.h"

#include <kestrona/memory_resident_data.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/// \file
/// Which records of two tables belong together.

namespace Kestrona::Tool {

struct KeyMatches {
    /// For each record the one with the same key on the other side, -1 for none.
    std::vector<std::int32_t> new_of_old;
    std::vector<std::int32_t> old_of_new;
    /// Records whose key an earlier one of the same side has. The first of a key belongs to the first, and so on.
    std::size_t old_repeats = 0;
    std::size_t new_repeats = 0;
};

/// A column of keys.
struct KeyColumn {
    Data::MemoryResident::IMemoryResidentData& store;
    ExactField field;
    std::int32_t records = 0;
};

/// Costs time in step with the number of records.
[[nodiscard]] KeyMatches MatchKeys(const KeyColumn& old_keys, const KeyColumn& new_keys);

} // namespace Kestrona::Tool
