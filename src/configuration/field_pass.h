#pragma once

#include <kestrona/store.h>

namespace Kestrona::Configuration {

// Turns the names that classifications hold into numbers, format by format. A keyword may name any format, but no step
// relies on class bits that this pass has yet to set on a later one. False when a field could not be resolved and that
// was reported; what was done until then stays.
bool RunFieldPass(Data::MemoryResident::MemoryResidentData& store);

} // namespace Kestrona::Configuration
