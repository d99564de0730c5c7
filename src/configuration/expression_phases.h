#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>

// The phases of a load that deal with the expressions of calculated and hidden fields.
namespace Kestrona::Configuration {

// Clears the compiled expressions of every field and compiles those of EVALUATE and HIDDEN IF. False when one cannot be
// compiled; that was reported and `ErrorExit` called. What was compiled before stays.
bool CompileExpressions(Data::MemoryResident::IMemoryResidentData& store);

// The same for one format, but goes on after a failure: a field whose expression cannot be compiled is left without.
void CompileExpressionsOf(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format);

// Whether all compiled EVALUATE expressions are sound. The first fault is reported and `ErrorExit` called.
bool ValidateExpressions(Data::MemoryResident::IMemoryResidentData& store);

} // namespace Kestrona::Configuration
