#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <string>

/// \file
/// Texts of records that are made by the module.

/// Stores a text in a cell as `SetDbString` does, so the field's length limit holds and an encrypted column encrypts
/// it. Returns 0.0, the number that stands in a numeric cell for a text held elsewhere.
KS_API double KSDLL_CreateFreeString(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                     std::int32_t field, std::int32_t record, const std::wstring& text);
