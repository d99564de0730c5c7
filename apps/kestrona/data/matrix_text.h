#pragma once

#include "data/cell_text.h"

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// Lists and matrices of records in one cell: `4;7;9` for a list or a row of values, `0;5|5;0` for a matrix, whose rows
/// run along its first dimension.

namespace Kestrona::Tool {

/// What decides how many values a record's matrix has.
enum class MatrixShape {
    List,   ///< As many as the record likes.
    Row,    ///< One for each record of a format.
    Square, ///< One for each pair of records of two formats.
};

struct MatrixSize {
    MatrixShape shape = MatrixShape::List;
    std::uint32_t rows = 1;
    std::uint32_t columns = 0; ///< 0 for a list.
};

/// Tells whether the records have lists or matrices of their own in this field.
[[nodiscard]] bool KeepsMatrices(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                 std::int32_t field);

/// Tells whether the records keep anything in this field: a value, a list or a matrix.
[[nodiscard]] bool KeepsValues(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                               std::int32_t field);

/// Tells whether the records have anything to show in this field, kept or calculated.
[[nodiscard]] bool HasValues(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, std::int32_t field);

/// Returns the size that the matrices of the field have now.
[[nodiscard]] MatrixSize SizeOfMatrix(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                      std::int32_t field);

/// Returns the form of the single values.
[[nodiscard]] ValueForm FormOfElement(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                      std::int32_t field);

/// Returns the record's values as UTF-8, "" when it has none.
[[nodiscard]] std::string MatrixText(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                     std::int32_t field, std::int32_t record);

/// The text of a value and its place in the list or matrix.
using ElementWriter = std::function<std::string(double value, std::int32_t index)>;
/// The same with the texts that `write` gives.
[[nodiscard]] std::string JoinMatrix(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                     std::int32_t field, std::int32_t record, const ElementWriter& write);

/// Reads one value; says what is wrong through `problem` with an empty result.
using ElementReader = std::function<std::optional<double>(std::string_view text, std::string& problem)>;

/// Reads the values of a cell that is not empty, row after row. Returns what is wrong through `problem` with an empty
/// result.
[[nodiscard]] std::optional<std::vector<double>> ParseMatrix(std::string_view text, const MatrixSize& size,
                                                             const ElementReader& read, std::string& problem);

} // namespace Kestrona::Tool
