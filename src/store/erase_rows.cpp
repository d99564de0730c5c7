// Implements: EraseDbRow, EraseDbRows.
#include "store/cell_removal.h"
#include "store/class_test.h"
#include "store/record_lists.h"
#include "store/stored_strings.h"

#include <kestrona/classes.h>
#include <kestrona/concrete_columns.h>
#include <kestrona/encrypted_string_column.h>
#include <kestrona/matrices.h>
#include <kestrona/store.h>

#include <algorithm>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr double kNoKey = -1.0;

enum class Cells {
    None,
    Matrices,
    Values
};

// What a field has to lose beside its texts, which are always its own. A borrowed column is its owner's concern.
Cells CellsOf(const field_info& field) {
    if (HasClass(field, Classes::kAdditionalReference)) {
        return Cells::None;
    }
    if ((field.type & TypeBit::kMatrix) == 0) {
        return field.column != nullptr && !field.column->IsNullColumn() ? Cells::Values : Cells::None;
    }
    const bool has_one_each = field.matrixColumn != nullptr && !HasClass(field, Classes::kCommonMatrix);
    return has_one_each ? Cells::Matrices : Cells::None;
}

// Takes one row out of every column.
void EraseRow(IMemoryResidentData& store, std::int32_t format, std::int32_t record) {
    formats_info& info = *store.GetFormatInfo(format);
    const double key = store.GetDbKeyValue(format, record);
    if (info.updateColumn != nullptr) {
        info.updateColumn->Erase(record, key);
    }
    for (const field_info& field : info.fields) {
        const Cells cells = CellsOf(field);
        if (cells == Cells::Matrices) {
            KSDLL_FreeMatrix(field.matrixColumn->GetValue(record));
            field.matrixColumn->Erase(record, key);
        } else if (cells == Cells::Values) {
            field.column->Erase(record, key);
        }
        if (field.stringColumn != nullptr) {
            field.stringColumn->Erase(record, key);
        }
    }
}

// Takes many rows out of every column, in one pass over each.
class RowsEraser {
public:
    RowsEraser(IMemoryResidentData& store, std::int32_t format, std::vector<std::int32_t> ascending)
        : info_(*store.GetFormatInfo(format)),
          keyColumn_(store.GetDbColumn(format, store.GetDbKey(format))),
          ascending_(std::move(ascending)),
          descending_(ascending_.rbegin(), ascending_.rend()),
          noKeys_(new NullRecordStateStrategy(), kNoKey) {
        std::ranges::transform(ascending_, std::back_inserter(keys_),
                               [&](std::int32_t record) { return store.GetDbKeyValue(format, record); });
    }

    // Columns read the keys of what they lose, so the keys go last.
    void Run() {
        for (const field_info& field : info_.fields) {
            if (keyColumn_ == nullptr || field.column != keyColumn_) {
                EraseFrom(field);
            }
        }
        for (const field_info& field : info_.fields) {
            if (keyColumn_ != nullptr && field.column == keyColumn_) {
                EraseFrom(field);
            }
        }
        if (info_.updateColumn != nullptr) {
            info_.updateColumn->GroupErase(Keys(), descending_);
        }
    }

private:
    IColumn<double>* Keys() { return keyColumn_ != nullptr ? keyColumn_ : &noKeys_; }

    void EraseFrom(const field_info& field) {
        const Cells cells = CellsOf(field);
        if (cells == Cells::Matrices) {
            EraseMatrices(*field.matrixColumn);
        } else if (cells == Cells::Values) {
            field.column->GroupErase(Keys(), descending_);
        }
        if (auto* const encrypted = dynamic_cast<EncryptedStringColumn*>(field.stringColumn)) {
            encrypted->EraseRecords(ascending_, keys_);
        } else if (field.stringColumn != nullptr) {
            field.stringColumn->GroupErase(Keys(), descending_);
        }
    }

    void EraseMatrices(IColumn<std::int32_t>& identities) {
        for (const std::int32_t record : descending_) {
            KSDLL_FreeMatrix(identities.GetValue(record));
        }
        RemoveCells<std::int32_t>(identities, ascending_, [this](std::size_t i) { return keys_[i]; });
    }

    formats_info& info_;
    IColumn<double>* keyColumn_;
    std::vector<std::int32_t> ascending_;
    std::vector<std::int32_t> descending_;
    std::vector<double> keys_;
    DoubleColumn noKeys_;
};

// Erases the rows that erased rows owned, and what those owned. A row that is gone is not found again.
void EraseOwned(IMemoryResidentData& store, std::vector<StoredKey> keys) {
    while (!keys.empty()) {
        const StoredKey next = keys.back();
        keys.pop_back();
        const std::int32_t record = FindRecordOfKey(store, next.format, next.key);
        if (record != -1) {
            AppendStoredKeys(store, next.format, record, keys);
            EraseRow(store, next.format, record);
        }
    }
}

} // namespace

void MemoryResidentData::EraseDbRow(std::int32_t format, std::int32_t record) {
    if (record < 0 || record >= GetCurrentDbSize(format)) {
        return;
    }
    std::vector<StoredKey> owned;
    AppendStoredKeys(*this, format, record, owned);
    EraseRow(*this, format, record);
    EraseOwned(*this, std::move(owned));
}

void MemoryResidentData::EraseDbRows(std::int32_t format, std::vector<std::int32_t> records) {
    std::vector<std::int32_t> ascending = AscendingRecords(*this, format, std::move(records));
    if (ascending.empty()) {
        return;
    }
    std::vector<StoredKey> owned;
    if (OwnsRecords(*FindFormat(format))) {
        for (const std::int32_t record : ascending) {
            AppendStoredKeys(*this, format, record, owned);
        }
    }
    RowsEraser(*this, format, std::move(ascending)).Run();
    EraseOwned(*this, std::move(owned));
}

} // namespace Kestrona::Data::MemoryResident
