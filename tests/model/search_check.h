#pragma once

#include "model/twin.h"

#include <kestrona/store.h>

#include <random>
#include <string>

namespace Kestrona::Model {

// Makes every kind of search once in a format, for drawn fields and values, and compares with a scan over the rows of
// the twin. Returns the differences, "" for none.
std::string FindSearchDifference(Data::MemoryResident::MemoryResidentData& store, const Twin& twin, std::int32_t format,
                                 std::mt19937& random);
// The same in every format.
std::string FindSearchDifference(Data::MemoryResident::MemoryResidentData& store, const Twin& twin,
                                 std::mt19937& random);

} // namespace Kestrona::Model
