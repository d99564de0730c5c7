#pragma once

#include "model/plan.h"

#include <cstdint>
#include <vector>

namespace Kestrona::Soak {

// The fields that every large format begins with.
enum Field : std::int32_t {
    kKey,
    kName,
    kStock,
    kActive,
    kLoad,
    kNeeds, // refers to the name of a record of another large format
    kParent,
    kTwice, // calculated
    kUses,  // a list of records of another large format, with amounts beside it
    kAmounts,
};

// A plant: a few groups of small formats whose matrices dimension each other, and large formats that refer to each
// other.
struct Plant {
    Model::Plan plan;
    std::vector<std::int32_t> sizes; // about how many records each format shall have
    std::int32_t first_large = 0;

    [[nodiscard]] bool IsLarge(std::int32_t format) const { return format >= first_large; }
};

// Requires: at least 8 formats.
Plant MakePlant(std::int32_t formats, std::int32_t records);

} // namespace Kestrona::Soak
