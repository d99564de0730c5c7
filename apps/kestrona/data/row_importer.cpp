#include "data/row_importer.h"

#include "data/display_text.h"
#include "encryption.h"

#include <kestrona/types.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <algorithm>

namespace Kestrona::Tool {
namespace {

constexpr std::int32_t kFirstCapacity = 1024;
constexpr std::int32_t kMostRecords = kFirstScratchRecord;

} // namespace

RowImporter::RowImporter(Data::MemoryResident::IMemoryResidentData& store, ImportedFile& file,
                         std::vector<Rejection>& rejections)
    : store_(store),
      file_(file),
      rejections_(rejections),
      key_field_(store.GetDbKey(file.format)) {}

void RowImporter::Take(const CsvRow& row) {
    if (!planned_) {
        planned_ = true;
        plan_ = PlanImport(store_, file_.format, row.cells);
        file_.notes = plan_.notes;
        file_.warnings = plan_.warnings;
        if (!plan_.has_key) {
            file_.notes.emplace_back("no key column; the records are numbered from 1");
        }
        values_.resize(plan_.columns.size());
        if (plan_.has_heading) {
            return;
        }
    }
    if (Check(row)) {
        Write(row);
    } else {
        ++file_.rejected_rows;
    }
}

void RowImporter::Finish() {
    store_.SetCurrentDbSize(file_.format, static_cast<std::int32_t>(file_.rows));
    store_.RebuildIndexes(file_.format);
}

bool RowImporter::Check(const CsvRow& row) {
    if (row.cells.size() != plan_.columns.size()) {
        return Reject(
            row, "", row.cells.front(),
            {Code::BadRow, fmt::format("the row has {} cells and not {}", row.cells.size(), plan_.columns.size())});
    }
    bool sound = true;
    for (std::size_t column = 0; column < row.cells.size(); ++column) {
        // Every faulty cell of a row is told.
        sound = (plan_.columns[column].field < 0 || CheckCell(row, column)) && sound;
    }
    if (sound && file_.rows >= static_cast<std::size_t>(kMostRecords)) {
        return Reject(row, "", "", {Code::TooManyRecords, "the format holds no more records"});
    }
    for (std::size_t column = 0; sound && column < row.cells.size(); ++column) {
        if (plan_.columns[column].field == key_field_) {
            sound = CheckKey(row, column);
        }
    }
    return sound;
}

bool RowImporter::CheckCell(const CsvRow& row, std::size_t column) {
    const PlannedColumn& plan = plan_.columns[column];
    if (plan.matrix) {
        return true;
    }
    if (plan.form == ValueForm::Text) {
        return CheckText(row, column);
    }
    Value& value = values_[column];
    value.present = true;
    value.pending = false;
    const bool empty = TrimCell(row.cells[column]).empty();
    if (empty && (plan.field == key_field_ || !HasUnset(plan.form))) {
        // Left at the field's default; a key has none that could serve.
        value.present = false;
        return plan.field != key_field_ || Reject(row, plan.name, "", {Code::BadKey, "the key is missing"});
    }
    return CheckNumber(row, column);
}

bool RowImporter::CheckNumber(const CsvRow& row, std::size_t column) {
    const PlannedColumn& plan = plan_.columns[column];
    Value& value = values_[column];
    std::string problem;
    const std::optional<double> number =
        ReadCell(store_, file_.format, plan.field, plan.form, row.cells[column], problem);
    if (!number && !plan.has_texts) {
        return Reject(row, plan.name, row.cells[column], {Code::BadCell, problem});
    }
    value.number = number.value_or(kUnset);
    value.pending = !number;
    return true;
}

bool RowImporter::CheckText(const CsvRow& row, std::size_t column) {
    const PlannedColumn& plan = plan_.columns[column];
    const std::string_view cell = row.cells[column];
    std::size_t bad = 0;
    if (!IsValidUtf8(cell, &bad)) {
        return Reject(row, plan.name, std::string(cell),
                      {Code::WrongEncoding, fmt::format("byte {} is no UTF-8", bad + 1)});
    }
    Value& value = values_[column];
    value.present = true;
    value.text = FromUtf8(cell);
    if (plan.max_length > 0 && Utf16Length(value.text) > plan.max_length) {
        return Reject(row, plan.name, std::string(cell),
                      {Code::TextTooLong, fmt::format("the text is longer than {} characters", plan.max_length)});
    }
    if (!value.text.empty() && IsLocked(store_, file_.format, plan.field)) {
        value.text = FromUtf8(kEncryptedPlaceholder); // so that nothing shows it, calculated fields included
    }
    return true;
}

bool RowImporter::CheckKey(const CsvRow& row, std::size_t column) {
    const PlannedColumn& plan = plan_.columns[column];
    if (plan.form != ValueForm::Text && !keys_.insert(values_[column].number).second) {
        return Reject(row, plan.name, row.cells[column], {Code::BadKey, "an earlier row has this key"});
    }
    return true;
}

bool RowImporter::Reject(const CsvRow& row, const std::string& column, const std::string& value, Problem reason) {
    rejections_.push_back({file_.file, row.line, column, value, std::move(reason)});
    return false;
}

void RowImporter::Write(const CsvRow& row) {
    const auto record = static_cast<std::int32_t>(file_.rows);
    GrowTo(record + 1);
    for (std::size_t column = 0; column < values_.size(); ++column) {
        const PlannedColumn& plan = plan_.columns[column];
        const Value& value = values_[column];
        if (plan.matrix) {
            KeepPending(file_.matrices, row, column, record);
            continue;
        }
        if (plan.field < 0 || !value.present) {
            continue;
        }
        if (plan.form == ValueForm::Text) {
            store_.SetDbString(file_.format, plan.field, record, value.text);
        } else {
            store_.SetDbValue(file_.format, plan.field, record, value.number);
            if (value.pending) {
                KeepPending(file_.references, row, column, record);
            }
        }
    }
    if (!plan_.has_key) {
        store_.SetDbKeyValue(file_.format, record, record + 1.0);
    }
    ++file_.rows;
}

void RowImporter::KeepPending(std::vector<PendingCell>& cells, const CsvRow& row, std::size_t column,
                              std::int32_t record) {
    const std::string& cell = row.cells[column];
    if (!TrimCell(cell).empty()) {
        cells.push_back({record, plan_.columns[column].field, row.line, cell});
    }
}

void RowImporter::GrowTo(std::int32_t records) {
    if (records <= capacity_) {
        return;
    }
    capacity_ = std::max(kFirstCapacity, capacity_ > kMostRecords / 2 ? kMostRecords : capacity_ * 2);
    store_.SetCurrentDbSize(file_.format, capacity_);
}

} // namespace Kestrona::Tool
