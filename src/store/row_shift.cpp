#include "store/row_shift.h"

#include "store/column_ownership.h"
#include "store/dimensioned_fields.h"
#include "store/row_fields.h"

#include <kestrona/encrypted_string_column.h>
#include <kestrona/free_strings.h>

#include <boost/unordered/unordered_flat_set.hpp>

#include <algorithm>
#include <utility>
#include <vector>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr std::int32_t kBlock = 512;

struct Rows {
    std::int32_t first; // stays
    std::int32_t last;  // is written last to first + 1
};

// Calls `move` with the number of a row and the values of the row before and of the row itself, from the back to the
// front. What it writes to the row is not seen by later calls.
template <typename T, typename Move>
void ForEachRow(const IColumn<T>& column, Rows rows, Move move) {
    std::vector<T> block(static_cast<std::size_t>(std::min(kBlock, rows.last - rows.first)) + 1);
    for (std::int32_t high = rows.last; high > rows.first;) {
        const std::int32_t low = std::max(rows.first, high - kBlock);
        column.ReadBlock(low, high - low + 1, block.data());
        for (std::int32_t row = high; row > low; --row) {
            const auto place = static_cast<std::size_t>(row - low);
            move(row, std::as_const(block[place - 1]), std::as_const(block[place]));
        }
        high = low;
    }
}

// Following each of many writes costs an index more than being built anew.
template <typename T>
void SuspendIndex(IColumn<T>& column, Rows rows) {
    constexpr std::int32_t kShareWorthRebuilding = 4;
    const auto moved = static_cast<std::uint32_t>(rows.last - rows.first);
    if (column.IsIndexValid() && moved > column.GetCurrentSize() / kShareWorthRebuilding) {
        column.BeginBulkUpdate();
    }
}

// A toggle whose default is neither 0 nor 1 keeps the default only as long as nobody writes it.
bool KeepsWhatIsWritten(IColumn<double>& column) {
    const double before = column.GetValue(kFirstScratchRecord);
    const double value = column.GetDefaultValue();
    column.SetValue(kFirstScratchRecord, value);
    const bool keeps = column.GetValue(kFirstScratchRecord) == value;
    column.SetValue(kFirstScratchRecord, before);
    return keeps;
}

void WriteEveryCell(IColumn<double>& column, Rows rows) {
    SuspendIndex(column, rows);
    ForEachRow(column, rows, [&](std::int32_t row, double before, double) { column.SetValue(row, before); });
}

// A text may be longer than its field allows since the limit was lowered: the copy is cut. An encrypted one moves as it
// is: decrypted and encrypted again it would grow by the zeros behind it.
void ShiftTexts(IMemoryResidentData& store, std::int32_t format, std::int32_t field, const field_info& info,
                Rows rows) {
    constexpr std::size_t kUnitsOfCharacter = 2;
    if (dynamic_cast<EncryptedStringColumn*>(info.stringColumn) != nullptr) {
        info.stringColumn->MoveUp(rows.first, rows.last);
        return;
    }
    const std::int32_t limit = info.data[DataSlot::kMaxTextLength];
    SuspendIndex(*info.stringColumn, rows);
    ForEachRow(*info.stringColumn, rows, [&](std::int32_t row, const std::wstring& before, const std::wstring& text) {
        const bool may_be_cut = limit > 0 && before.size() * kUnitsOfCharacter > static_cast<std::size_t>(limit);
        if (before != text || may_be_cut) {
            KSDLL_CreateFreeString(store, format, field, row, before);
        }
    });
}

// The columns that writes to `column` go through to.
std::vector<IColumn<double>*> OverriddenBy(const formats_info& format, const IColumn<double>* column) {
    std::vector<IColumn<double>*> targets;
    for (IColumn<double>* target = FindOverrideTarget(format, column); target != nullptr;
         target = FindOverrideTarget(format, target)) {
        targets.push_back(target);
    }
    return targets;
}

// Each column moves its own cells, so what a write brings about elsewhere is taken back.
void ShiftOverride(IColumn<double>& column, const std::vector<IColumn<double>*>& targets, Rows rows) {
    std::vector<double> kept(targets.size());
    SuspendIndex(column, rows);
    ForEachRow(column, rows, [&](std::int32_t row, double before, double) {
        std::ranges::transform(targets, kept.begin(), [row](const auto* target) { return target->GetValue(row); });
        column.SetValue(row, before);
        for (std::size_t i = 0; i < targets.size(); ++i) {
            targets[i]->SetValue(row, kept[i]);
        }
    });
}

void ShiftValues(const formats_info& format, IColumn<double>& column, Rows rows) {
    const std::vector<IColumn<double>*> targets = OverriddenBy(format, &column);
    if (targets.empty()) {
        if (KeepsWhatIsWritten(column)) {
            column.MoveUp(rows.first, rows.last);
        } else {
            WriteEveryCell(column, rows);
        }
    } else {
        ShiftOverride(column, targets, rows);
    }
}

// A column that several fields hold moves once.
void ShiftFields(IMemoryResidentData& store, std::int32_t format, const formats_info& info, Rows rows) {
    boost::unordered_flat_set<const void*> moved;
    for (std::size_t i = 0; i < info.fields.size(); ++i) {
        const field_info& field = info.fields[i];
        if (!MovesWithRow(field) || field.column == nullptr) {
            continue;
        }
        if (!field.column->IsNullColumn()) {
            if (moved.insert(field.column).second) {
                ShiftValues(info, *field.column, rows);
            }
        } else if (field.stringColumn != nullptr && moved.insert(field.stringColumn).second) {
            ShiftTexts(store, format, static_cast<std::int32_t>(i), field, rows);
        }
    }
}

// Whether the cells of the matrices are copied: also those of a field that shares its ids with one that copies them.
bool IsCopied(const formats_info& format, const field_info& field) {
    return std::ranges::any_of(format.fields, [&](const field_info& other) {
        return other.matrixColumn == field.matrixColumn && HoldsMatrices(other) && !MovesByIdentity(other);
    });
}

void ShiftMatrices(MemoryResidentData& store, std::int32_t format, const formats_info& info, Rows rows) {
    std::vector<std::int32_t> copied;
    boost::unordered_flat_set<const void*> moved;
    for (std::size_t i = 0; i < info.fields.size(); ++i) {
        const field_info& field = info.fields[i];
        if (!HoldsMatrices(field)) {
            continue;
        }
        if (IsCopied(info, field)) {
            copied.push_back(static_cast<std::int32_t>(i));
        } else if (moved.insert(field.matrixColumn).second) {
            field.matrixColumn->MoveUp(rows.first, rows.last);
        }
    }
    for (std::int32_t row = copied.empty() ? rows.first : rows.last; row > rows.first; --row) {
        for (const std::int32_t field : copied) {
            store.CopyMatrix(format, field, row - 1, format, field, row);
        }
    }
}

} // namespace

void ShiftRowsUp(MemoryResidentData& store, std::int32_t format, std::int32_t record, std::int32_t last) {
    const formats_info& info = *store.GetFormatInfo(format);
    const Rows rows{record, last};
    ShiftFields(store, format, info, rows);
    ShiftMatrices(store, format, info, rows);
    if (info.updateColumn != nullptr) {
        info.updateColumn->MoveUp(rows.first, rows.last);
    }
}

} // namespace Kestrona::Data::MemoryResident
