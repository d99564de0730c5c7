#pragma once

#include "data/cell_text.h"
#include "output/table_source.h"

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <string>
#include <vector>

/// \file
/// Records as a table to print.

namespace Kestrona::Tool {

/// Fields and records of a format, read from the store when they are printed.
class RecordSource : public TableSource {
public:
    /// Shows `fields` of `records`, in these orders.
    RecordSource(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                 const std::vector<std::int32_t>& fields, std::vector<std::int32_t> records);

    [[nodiscard]] const std::vector<OutputColumn>& Columns() const override { return columns_; }

    [[nodiscard]] std::size_t RowCount() const override { return records_.size(); }

    [[nodiscard]] std::string Cell(std::size_t row, std::size_t column) const override;

private:
    struct Field {
        std::int32_t field;
        ValueForm form;
        bool matrix;
    };

    Data::MemoryResident::IMemoryResidentData& store_;
    std::int32_t format_;
    std::vector<Field> fields_;
    std::vector<OutputColumn> columns_;
    std::vector<std::int32_t> records_;
};

/// Tells whether the field has something to print.
[[nodiscard]] bool IsShown(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, std::int32_t field);

} // namespace Kestrona::Tool
