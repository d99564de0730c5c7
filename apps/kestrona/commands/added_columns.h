#pragma once

#include "commands/record_source.h"
#include "data/record_expression.h"

#include <kestrona/memory_resident_data.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// \file
/// Columns that the command line asks for, beside those of the fields.

namespace Kestrona::Tool {

struct NamedExpression {
    std::string name;
    RecordExpression expression;
};

/// Reads `NAME=EXPRESSION` texts. No two columns may have one name, a field's included. Says on stderr what is wrong
/// and gives an empty result.
[[nodiscard]] std::optional<std::vector<NamedExpression>>
ParseAddedColumns(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                  const std::vector<std::string>& texts);

/// Fields of records, then the values of expressions. Numbers are evaluated once for all records, texts when they are
/// printed.
class AddedColumns : public TableSource {
public:
    AddedColumns(Data::MemoryResident::IMemoryResidentData& store, const std::vector<FollowedField>& fields,
                 std::vector<NamedExpression> added, const std::vector<std::int32_t>& records, CellStyle style);

    [[nodiscard]] const std::vector<OutputColumn>& Columns() const override { return columns_; }

    [[nodiscard]] std::size_t RowCount() const override { return records_.size(); }

    [[nodiscard]] std::string Cell(std::size_t row, std::size_t column) const override;

private:
    RecordSource fields_;
    std::vector<NamedExpression> added_;
    std::vector<std::int32_t> records_;
    std::vector<std::vector<double>> numbers_; ///< One for each of `added_`, empty for a text.
    std::vector<OutputColumn> columns_;
};

} // namespace Kestrona::Tool
