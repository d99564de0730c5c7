#pragma once

#include <kestrona/memory_resident_data.h>

// The phases of a load that deal with the expressions of calculated and hidden fields.
namespace Kestrona::Configuration {

// Clears the compiled expressions of every field and compiles those of EVALUATE and HIDDEN IF. False when one cannot be
// compiled and that was reported. The module has no compiler yet: every expression stays empty, and a debug line for
// each says that its text is kept.
bool CompileExpressions(Data::MemoryResident::IMemoryResidentData& store);

// Whether all compiled EVALUATE expressions are sound; the first fault is reported. Without compiled expressions there
// is nothing to find.
bool ValidateExpressions(Data::MemoryResident::IMemoryResidentData& store);

} // namespace Kestrona::Configuration
