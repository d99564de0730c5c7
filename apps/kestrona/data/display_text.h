#pragma once

#include "data/cell_text.h"

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// \file
/// Values as the application shows them, and back: references by the text of what they refer to, dates in the locale's
/// layout, numbers in their FORMAT, substituted texts.

namespace Kestrona::Tool {

/// Tells whether what the field shows are numbers.
[[nodiscard]] bool ShowsNumbers(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                std::int32_t field);

/// Returns the cell's display text as UTF-8, without the blanks that a FORMAT puts around numbers.
[[nodiscard]] std::string DisplayText(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                      std::int32_t field, std::int32_t record);

/// Stands for an unset entry of a list or matrix, which would drown in the word for unset values.
inline constexpr std::string_view kUnsetEntry = "-";

/// Returns the display texts of the record's list or matrix, divided like those of `MatrixText`.
[[nodiscard]] std::string DisplayMatrix(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                        std::int32_t field, std::int32_t record);

/// Returns the display text of a value of the field, which may stand in a list, without the blanks around it.
[[nodiscard]] std::wstring ShownValue(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                      std::int32_t field, double value);

/// Reads a value of a form other than `Text` as `ParseCell` does, or else as the field shows it: a date in the locale's
/// layout, a duration in its words, the word of a toggle, a text of SUBSTITUTE, SUBSTITUTX or the field's string table.
/// The texts of records are not among them, see `ReferenceTexts`.
///
/// Only what is wholly understood counts: a word or a number that the field would not show is an error. Returns what
/// is wrong through `problem` with an empty result.
[[nodiscard]] std::optional<double> ReadCell(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                             std::int32_t field, ValueForm form, std::string_view text,
                                             std::string& problem);

} // namespace Kestrona::Tool
