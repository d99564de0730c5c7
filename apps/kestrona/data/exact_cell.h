#pragma once

#include "data/cell_text.h"

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <string>

/// \file
/// Stored cells as text without any loss: `ParseCell` reads the very value back.

namespace Kestrona::Tool {

/// What there is to know of a field to read its cells, found once for all records.
struct ExactField {
    std::int32_t format = -1;
    std::int32_t field = -1;
    ValueForm form = ValueForm::Number; ///< Of a cell, or of the entries of a list or matrix.
    bool matrix = false;
    bool common = false; ///< All records have the matrix of the first one.
    bool encrypted = false;
};

[[nodiscard]] ExactField DescribeField(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                       std::int32_t field);

/// Returns the cell as UTF-8, in the form in which files are read; of an encrypted field the placeholder where there is
/// no key. A matrix that all records have in common stands with the first record only.
[[nodiscard]] std::string ExactCell(Data::MemoryResident::IMemoryResidentData& store, const ExactField& field,
                                    std::int32_t record);

} // namespace Kestrona::Tool
