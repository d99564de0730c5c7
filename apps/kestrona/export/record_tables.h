#pragma once

#include "commands/record_source.h"
#include "data/exact_cell.h"
#include "export/export_table.h"
#include "output/table_source.h"

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <string>
#include <vector>

/// \file
/// The records of a store as tables to export.

namespace Kestrona::Tool {

/// All records of a format with the exact values of some of its fields.
class StoredSource : public TableSource {
public:
    StoredSource(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                 const std::vector<std::int32_t>& fields);

    [[nodiscard]] const std::vector<OutputColumn>& Columns() const override { return columns_; }

    [[nodiscard]] std::size_t RowCount() const override { return rows_; }

    [[nodiscard]] std::string Cell(std::size_t row, std::size_t column) const override;

private:
    Data::MemoryResident::IMemoryResidentData& store_;
    std::size_t rows_;
    std::vector<ExactField> fields_;
    std::vector<OutputColumn> columns_;
};

/// Which fields of a format are exported.
enum class ExportFields {
    Kept, ///< Those that files give, without the calculated ones.
    All,  ///< All that have something to show.
};

/// Makes a table of each of these formats. Those with stored values know their keys and what their references refer to.
[[nodiscard]] std::vector<ExportTable> TablesOf(Data::MemoryResident::IMemoryResidentData& store,
                                                const std::vector<std::int32_t>& formats, ExportFields fields,
                                                CellStyle style);

} // namespace Kestrona::Tool
