#pragma once

#include "output/paint.h"

#include <cstddef>
#include <string>
#include <vector>

/// \file
/// The tool's one form of tabular result.

namespace Kestrona::Tool {

/// What a cell holds, as far as an output form cares.
enum class CellKind {
    Text,
    Number,
    Matrix, ///< Values divided by semicolons, rows of them by bars.
};

struct OutputColumn {
    std::string name; ///< UTF-8.
    CellKind kind = CellKind::Text;
};

/// A table that is read cell by cell, so that a large one is never held twice.
class TableSource {
public:
    TableSource() = default;
    TableSource(const TableSource&) = delete;
    TableSource& operator=(const TableSource&) = delete;
    virtual ~TableSource() = default;

    [[nodiscard]] virtual const std::vector<OutputColumn>& Columns() const = 0;
    [[nodiscard]] virtual std::size_t RowCount() const = 0;
    /// Returns the cell as UTF-8; "" for a cell that holds nothing.
    [[nodiscard]] virtual std::string Cell(std::size_t row, std::size_t column) const = 0;

    /// What the whole row is painted with on a terminal.
    [[nodiscard]] virtual Paint RowPaint(std::size_t /*row*/) const { return Paint::None; }
};

/// A small table whose rows stand in memory.
class ListSource : public TableSource {
public:
    explicit ListSource(std::vector<OutputColumn> columns) : columns_(std::move(columns)) {}

    void AddRow(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }

    [[nodiscard]] const std::vector<OutputColumn>& Columns() const override { return columns_; }

    [[nodiscard]] std::size_t RowCount() const override { return rows_.size(); }

    [[nodiscard]] std::string Cell(std::size_t row, std::size_t column) const override { return rows_[row][column]; }

private:
    std::vector<OutputColumn> columns_;
    std::vector<std::vector<std::string>> rows_;
};

} // namespace Kestrona::Tool
