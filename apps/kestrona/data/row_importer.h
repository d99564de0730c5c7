#pragma once

#include "data/csv_reader.h"
#include "data/data_import.h"
#include "data/import_plan.h"

#include <string>
#include <unordered_set>
#include <vector>

/// \file
/// Turns the rows of one file into records.

namespace Kestrona::Tool {

/// Takes the rows of one file. A row is checked whole before any of its cells is written.
class RowImporter {
public:
    /// Borrows everything. Requires: the format holds no records.
    RowImporter(Data::MemoryResident::IMemoryResidentData& store, ImportedFile& file,
                std::vector<Rejection>& rejections);
    RowImporter(const RowImporter&) = delete;
    RowImporter& operator=(const RowImporter&) = delete;

    void Take(const CsvRow& row);
    /// Cuts the format to the records made. Call once after the last row.
    void Finish();

private:
    struct Value {
        double number = 0.0;
        std::wstring text;
        bool present = false;
        bool pending = false; ///< A text that stands for a key; the number is unset until it is known.
    };

    [[nodiscard]] bool Check(const CsvRow& row);
    [[nodiscard]] bool CheckCell(const CsvRow& row, std::size_t column);
    [[nodiscard]] bool CheckNumber(const CsvRow& row, std::size_t column);
    [[nodiscard]] bool CheckText(const CsvRow& row, std::size_t column);
    [[nodiscard]] bool CheckKey(const CsvRow& row, std::size_t column);
    bool Reject(const CsvRow& row, const std::string& column, const std::string& value, Problem reason);
    void Write(const CsvRow& row);
    void KeepPending(std::vector<PendingCell>& cells, const CsvRow& row, std::size_t column, std::int32_t record);
    void GrowTo(std::int32_t records);

    Data::MemoryResident::IMemoryResidentData& store_;
    ImportedFile& file_;
    std::vector<Rejection>& rejections_;
    std::int32_t key_field_;
    ImportPlan plan_;
    bool planned_ = false;
    std::vector<Value> values_;
    std::unordered_set<double> keys_;
    std::int32_t capacity_ = 0;
};

} // namespace Kestrona::Tool
