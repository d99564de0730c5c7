#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// \file
/// Stored values as text and back: numbers in their shortest form, dates as ISO texts, unset ones as nothing.

namespace Kestrona::Tool {

/// How the tool writes the cells of a field.
enum class ValueForm {
    Number,
    Integer,
    Toggle,
    Date,
    Duration,
    Reference,
    Text
};

[[nodiscard]] ValueForm FormOfField(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                    std::int32_t field);

/// What a cell that holds nothing stores, in the forms that `HasUnset`.
inline constexpr double kUnset = -1.0;

/// Tells whether `kUnset` stands for nothing in cells of this form.
[[nodiscard]] constexpr bool HasUnset(ValueForm form) {
    return form == ValueForm::Date || form == ValueForm::Duration || form == ValueForm::Reference;
}

/// Tells whether each record has one stored value of the field: not for calculated fields, lists and matrices.
[[nodiscard]] bool KeepsCells(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                              std::int32_t field);

/// Tells whether each record has one value of the field, stored or calculated.
[[nodiscard]] bool HasCells(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, std::int32_t field);

/// Returns the cell as UTF-8.
[[nodiscard]] std::string CellText(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                   std::int32_t field, std::int32_t record, ValueForm form);

/// Returns the text without the blanks, tabs and carriage returns around it.
[[nodiscard]] std::string_view TrimCell(std::string_view text);

/// Returns a value of a form other than `Text`, "" for an unset one; a date with as many decimals of a second as tell
/// it from its neighbours. `ParseCell` reads the very value back.
[[nodiscard]] std::string ValueText(double value, ValueForm form);

/// Reads a value of a form other than `Text`. An empty text is unset (-1.0) for dates, durations and references and
/// nothing for the others. Returns what is wrong through `problem` with an empty result.
[[nodiscard]] std::optional<double> ParseCell(std::string_view text, ValueForm form, std::string& problem);

/// Reads `YYYY-MM-DD` with an optional time `hh:mm[:ss[.fff]]` after a blank or a `T`, as days since 30 December 1899.
[[nodiscard]] std::optional<double> ParseIsoDate(std::string_view text);

/// Writes days since 30 December 1899 as `YYYY-MM-DD`, with a time to the second where there is one.
[[nodiscard]] std::string IsoDate(double days);

} // namespace Kestrona::Tool
