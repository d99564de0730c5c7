#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>

/// \file
/// What compiled expressions lead to. A calculated field may read other calculated fields of its format; both questions
/// follow such chains, in time that grows with the size of the expressions met, each counted once.

/// Tells whether the expressions of all calculated fields are sound: none leads back to its own field, none reads a
/// script variable, none reads a translatable text. The first field with a fault is reported by
/// `KSDLL_ReportParseErrorToMessageBox` and loses its expression, and no further field is looked at.
[[nodiscard]] KS_API bool KSDLL_ValidateExpressions(Kestrona::Data::MemoryResident::IMemoryResidentData& store);

/// Tells whether a calculated field depends, over any number of calculated fields, on a field with EXCLUDE FROM DB.
/// Throws the wide text "Expected an evaluted column" (`const wchar_t*`, spelled so) for a field that is not
/// calculated, and "Cyclic dependency found." when it meets a ring before such a field.
[[nodiscard]] KS_API bool KSDLL_RequiresExclusionFromDB(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                                        std::int32_t format, std::int32_t field);
