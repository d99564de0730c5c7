#pragma once

#include "data/cell_text.h"
#include "data/followed_field.h"
#include "output/table_source.h"
#include "output/table_writer.h"

#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <string>
#include <vector>

/// \file
/// Records as a table to print.

namespace Kestrona::Tool {

/// How the cells of records are written.
enum class CellStyle {
    Stored, ///< Free of the locale, in the form in which files are read.
    Shown   ///< As the application shows them.
};

/// Returns the style of an output form: one for people shows texts, one for programs the stored values, unless the
/// command line asks for the stored values (`raw`) or the texts.
[[nodiscard]] CellStyle StyleFor(OutputForm form, bool raw, bool text);

/// Fields and records of a format, read from the store when they are printed.
class RecordSource : public TableSource {
public:
    /// Shows `fields` of `records`, in these orders. A cell whose references lead to no record is empty.
    RecordSource(Data::MemoryResident::IMemoryResidentData& store, const std::vector<FollowedField>& fields,
                 std::vector<std::int32_t> records, CellStyle style);

    [[nodiscard]] const std::vector<OutputColumn>& Columns() const override { return columns_; }

    [[nodiscard]] std::size_t RowCount() const override { return records_.size(); }

    [[nodiscard]] std::string Cell(std::size_t row, std::size_t column) const override;

private:
    struct Field {
        FollowedField place;
        ValueForm form;
        bool matrix;
    };

    [[nodiscard]] std::string CellOfStyle(const Field& shown, std::int32_t record) const;

    Data::MemoryResident::IMemoryResidentData& store_;
    CellStyle style_;
    std::vector<Field> fields_;
    std::vector<OutputColumn> columns_;
    std::vector<std::int32_t> records_;
};

} // namespace Kestrona::Tool
