#pragma once

#include "commands/record_source.h"
#include "data/cell_text.h"
#include "output/table_source.h"

#include <kestrona/tracking.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// \file
/// A path of references, and what it leads to, as tables to print.

namespace Kestrona::Tool {

/// The steps of a path, one row each: where they stand and how they lead on.
class PathSource : public ListSource {
public:
    /// Requires: a resolved path from `format`.
    PathSource(Data::MemoryResident::IMemoryResidentData& store, const Tracking::TrackingPath& path,
               std::int32_t format);
};

/// The keys of records and the values at the end of a path; nothing where the path leads to no record. A path to a list
/// or a matrix ends with one element of it.
class TrackedSource : public TableSource {
public:
    /// Requires: a resolved path from `format`.
    TrackedSource(Data::MemoryResident::IMemoryResidentData& store, const Tracking::TrackingPath& path,
                  std::int32_t format, const std::vector<std::int32_t>& records, CellStyle style);

    [[nodiscard]] const std::vector<OutputColumn>& Columns() const override { return columns_; }

    [[nodiscard]] std::size_t RowCount() const override { return keys_.RowCount(); }

    [[nodiscard]] std::string Cell(std::size_t row, std::size_t column) const override;

private:
    [[nodiscard]] std::string ElementText(std::size_t row) const;

    Data::MemoryResident::IMemoryResidentData& store_;
    TableColumn value_; ///< The field whose values are shown.
    CellStyle style_;
    RecordSource keys_;
    std::optional<RecordSource> fields_;          ///< Where each record has one value of its own.
    std::vector<std::optional<double>> elements_; ///< In place of these.
    std::vector<OutputColumn> columns_;
};

} // namespace Kestrona::Tool
