#pragma once

#include <kestrona/store.h>

namespace Kestrona::Configuration {

// Checks and links what the field pass has resolved, which it must have done for all formats. False when something does
// not fit and that was reported; what was done until then stays.
bool RunRelationshipPass(Data::MemoryResident::MemoryResidentData& store);

} // namespace Kestrona::Configuration
