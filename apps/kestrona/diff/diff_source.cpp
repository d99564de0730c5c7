#include "diff/diff_source.h"

#include "data/display_text.h"
#include "encryption.h"

#include <kestrona/unicode.h>

#include <algorithm>
#include <array>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

enum Column : std::size_t {
    kTable,
    kChange,
    kKey,
    kField,
    kOld,
    kNew
};

std::size_t RowsOf(const TableDiff& diff) {
    if (diff.old_format < 0 || diff.new_format < 0) {
        return 1;
    }
    return diff.removed_fields.size() + diff.added_fields.size() + diff.removed.size() + diff.changes.size() +
           diff.added.size();
}

} // namespace

DiffSource::DiffSource(const DiffSides& sides, const std::vector<TableDiff>& diffs, CellStyle style)
    : sides_(sides),
      diffs_(diffs),
      style_(style),
      columns_{{"Table"}, {"Change"}, {"Key"}, {"Field"}, {"Old"}, {"New"}} {
    for (const TableDiff& diff : diffs) {
        ends_.push_back(RowCount() + RowsOf(diff));
    }
}

DiffSource::Row DiffSource::Locate(std::size_t row) const {
    const auto table = static_cast<std::size_t>(std::ranges::upper_bound(ends_, row) - ends_.begin());
    const TableDiff& diff = diffs_[table];
    if (diff.old_format < 0 || diff.new_format < 0) {
        return {diff, diff.old_format < 0 ? Change::TableAdded : Change::TableRemoved, 0};
    }
    std::size_t place = row - (table == 0 ? 0 : ends_[table - 1]);
    const std::array<std::pair<Change, std::size_t>, 4> parts{{{Change::FieldRemoved, diff.removed_fields.size()},
                                                               {Change::FieldAdded, diff.added_fields.size()},
                                                               {Change::RecordRemoved, diff.removed.size()},
                                                               {Change::RecordChanged, diff.changes.size()}}};
    for (const auto& [change, count] : parts) {
        if (place < count) {
            return {diff, change, place};
        }
        place -= count;
    }
    return {diff, Change::RecordAdded, place};
}

const char* DiffSource::NameOf(Change change) {
    switch (change) {
    case Change::TableRemoved:
        return "table removed";
    case Change::TableAdded:
        return "table added";
    case Change::FieldRemoved:
        return "field removed";
    case Change::FieldAdded:
        return "field added";
    case Change::RecordRemoved:
        return "removed";
    case Change::RecordChanged:
        return "changed";
    case Change::RecordAdded:
        break;
    }
    return "added";
}

std::string DiffSource::Value(IMemoryResidentData& store, const ExactField& field, std::int32_t record) const {
    if (style_ == CellStyle::Stored || field.encrypted) {
        return ExactCell(store, field, record);
    }
    return WithoutZeros(field.matrix ? DisplayMatrix(store, field.format, field.field, record)
                                     : DisplayText(store, field.format, field.field, record));
}

std::string DiffSource::Key(const Row& row) const {
    const auto key = [this](IMemoryResidentData& store, std::int32_t format, std::int32_t record) {
        return Value(store, DescribeField(store, format, store.GetDbKey(format)), record);
    };
    switch (row.change) {
    case Change::RecordRemoved:
        return key(sides_.old_store, row.diff.old_format, row.diff.removed[row.place]);
    case Change::RecordChanged:
        return key(sides_.old_store, row.diff.old_format, row.diff.changes[row.place].old_record);
    case Change::RecordAdded:
        return key(sides_.new_store, row.diff.new_format, row.diff.added[row.place]);
    default:
        return {};
    }
}

std::string DiffSource::FieldName(const Row& row) const {
    switch (row.change) {
    case Change::FieldRemoved:
        return row.diff.removed_fields[row.place];
    case Change::FieldAdded:
        return row.diff.added_fields[row.place];
    case Change::RecordChanged: {
        const ExactField& field = row.diff.fields[row.diff.changes[row.place].field].old_field;
        return ToUtf8(sides_.old_store.GetColumnName(field.format, field.field));
    }
    default:
        return {};
    }
}

std::string DiffSource::Cell(std::size_t row, std::size_t column) const {
    const Row located = Locate(row);
    switch (column) {
    case kTable:
        return located.diff.name;
    case kChange:
        return NameOf(located.change);
    case kKey:
        return Key(located);
    case kField:
        return FieldName(located);
    default:
        break;
    }
    if (located.change != Change::RecordChanged) {
        return {};
    }
    const CellChange& change = located.diff.changes[located.place];
    const FieldPair& pair = located.diff.fields[change.field];
    return column == kOld ? Value(sides_.old_store, pair.old_field, change.old_record)
                          : Value(sides_.new_store, pair.new_field, change.new_record);
}

Paint DiffSource::RowPaint(std::size_t row) const {
    switch (Locate(row).change) {
    case Change::TableRemoved:
    case Change::FieldRemoved:
    case Change::RecordRemoved:
        return Paint::Removed;
    case Change::RecordChanged:
        return Paint::Changed;
    case Change::TableAdded:
    case Change::FieldAdded:
    case Change::RecordAdded:
        break;
    }
    return Paint::Added;
}

DiffSummary::DiffSummary(const std::vector<TableDiff>& diffs)
    : ListSource({{"Table"},
                  {"Old", CellKind::Number},
                  {"New", CellKind::Number},
                  {"Removed", CellKind::Number},
                  {"Added", CellKind::Number},
                  {"Changed", CellKind::Number},
                  {"Cells", CellKind::Number},
                  {"Fields removed", CellKind::Number},
                  {"Fields added", CellKind::Number}}) {
    for (const TableDiff& diff : diffs) {
        AddRow({diff.name, diff.old_format < 0 ? "" : std::to_string(diff.old_records),
                diff.new_format < 0 ? "" : std::to_string(diff.new_records), std::to_string(diff.removed.size()),
                std::to_string(diff.added.size()), std::to_string(diff.changed_records),
                std::to_string(diff.changes.size()), std::to_string(diff.removed_fields.size()),
                std::to_string(diff.added_fields.size())});
    }
}

} // namespace Kestrona::Tool
