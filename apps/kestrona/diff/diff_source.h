#pragma once

#include "commands/record_source.h"
#include "diff/table_diff.h"
#include "output/table_source.h"

#include <cstddef>
#include <string>
#include <vector>

/// \file
/// Differences as tables to print.

namespace Kestrona::Tool {

/// One row for each difference: a table or a field that one side has, a record added or removed, a cell changed.
class DiffSource : public TableSource {
public:
    /// Borrows the diffs.
    DiffSource(const DiffSides& sides, const std::vector<TableDiff>& diffs, CellStyle style);

    [[nodiscard]] const std::vector<OutputColumn>& Columns() const override { return columns_; }

    [[nodiscard]] std::size_t RowCount() const override { return ends_.empty() ? 0 : ends_.back(); }

    [[nodiscard]] std::string Cell(std::size_t row, std::size_t column) const override;

    [[nodiscard]] Paint RowPaint(std::size_t row) const override;

private:
    enum class Change {
        TableRemoved,
        TableAdded,
        FieldRemoved,
        FieldAdded,
        RecordRemoved,
        RecordChanged,
        RecordAdded
    };

    /// A row, and its place among those of its kind.
    struct Row {
        const TableDiff& diff;
        Change change;
        std::size_t place;
    };

    [[nodiscard]] Row Locate(std::size_t row) const;
    [[nodiscard]] std::string Key(const Row& row) const;
    [[nodiscard]] std::string FieldName(const Row& row) const;
    [[nodiscard]] std::string Value(Data::MemoryResident::IMemoryResidentData& store, const ExactField& field,
                                    std::int32_t record) const;

    static const char* NameOf(Change change);

    DiffSides sides_;
    const std::vector<TableDiff>& diffs_;
    CellStyle style_;
    std::vector<OutputColumn> columns_;
    std::vector<std::size_t> ends_; ///< The number of rows up to and with each table.
};

/// One row for each table with the numbers of what differs.
class DiffSummary : public ListSource {
public:
    explicit DiffSummary(const std::vector<TableDiff>& diffs);
};

} // namespace Kestrona::Tool
