// Implements: CopyField, CopyItemInfo, SwapItemInfo, ItemInfoIsEqual.
#include "store/class_test.h"
#include "store/column_ownership.h"
#include "store/row_fields.h"

#include <kestrona/classes.h>
#include <kestrona/encrypted_string_column.h>
#include <kestrona/free_strings.h>
#include <kestrona/store.h>

#include <array>
#include <vector>

namespace Kestrona::Data::MemoryResident {

namespace {

bool HoldsText(const field_info& field) {
    return field.column != nullptr && field.column->IsNullColumn();
}

void SwapValues(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record1,
                std::int32_t record2) {
    const double value1 = store.GetDbValue(format, field, record1);
    const double value2 = store.GetDbValue(format, field, record2);
    store.SetDbValue(format, field, record1, value2);
    store.SetDbValue(format, field, record2, value1);
}

// An encrypted text moves as it is: decrypted and encrypted again it would grow by the zeros behind it.
EncryptedStringColumn* FindEncrypted(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return dynamic_cast<EncryptedStringColumn*>(store.GetDbStringArray(format, field));
}

void CopyText(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t source_record,
              std::int32_t target_record) {
    if (EncryptedStringColumn* const column = FindEncrypted(store, format, field)) {
        const std::wstring stored = column->GetStoredValue(source_record);
        column->SetStoredValue(target_record, stored);
    } else {
        KSDLL_CreateFreeString(store, format, field, target_record, store.GetDbString(format, field, source_record));
    }
}

void SwapTexts(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record1,
               std::int32_t record2) {
    if (EncryptedStringColumn* const column = FindEncrypted(store, format, field)) {
        const std::wstring stored = column->GetStoredValue(record1);
        CopyText(store, format, field, record2, record1);
        column->SetStoredValue(record2, stored);
        return;
    }
    const std::wstring text1 = store.GetDbString(format, field, record1);
    const std::wstring text2 = store.GetDbString(format, field, record2);
    KSDLL_CreateFreeString(store, format, field, record1, text2);
    KSDLL_CreateFreeString(store, format, field, record2, text1);
}

void SwapUpdates(IColumn<std::int32_t>& updates, std::int32_t record1, std::int32_t record2) {
    const std::int32_t update1 = updates.GetValue(record1);
    updates.SetValue(record1, updates.GetValue(record2));
    updates.SetValue(record2, update1);
}

bool CellsAreEqual(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record1,
                   std::int32_t record2) {
    if (HoldsText(*store.GetFieldInfo(format, field))) {
        return store.GetDbString(format, field, record1) == store.GetDbString(format, field, record2);
    }
    return store.GetDbValue(format, field, record1) == store.GetDbValue(format, field, record2);
}

// While rows move, each column moves its own cells: what an OVERRIDE column writes through to others is taken back, or
// their own values would be lost. Those further along a chain of overrides are restored last.
//
// Not by a destructor: a write may find no memory for its mark, and what it throws must not end the process.
class KeptTargets {
public:
    KeptTargets(const formats_info& format, const field_info& field, std::int32_t record1, std::int32_t record2)
        : records_{record1, record2} {
        for (IColumn<double>* column = field.overrideTarget; column != nullptr;
             column = FindOverrideTarget(format, column)) {
            cells_.push_back({column, {column->GetValue(record1), column->GetValue(record2)}});
        }
    }

    void Restore() const {
        for (const Cells& cells : cells_) {
            cells.column->SetValue(records_[0], cells.values[0]);
            cells.column->SetValue(records_[1], cells.values[1]);
        }
    }

private:
    struct Cells {
        IColumn<double>* column;
        std::array<double, 2> values;
    };

    std::array<std::int32_t, 2> records_;
    std::vector<Cells> cells_;
};

} // namespace

void MemoryResidentData::CopyField(std::int32_t format, std::int32_t field, std::int32_t source_record,
                                   std::int32_t target_record) {
    const field_info* const info = FindField(format, field);
    if (info == nullptr) {
        return;
    }
    if (!HoldsText(*info)) {
        SetDbValue(format, field, target_record, GetDbValue(format, field, source_record));
    } else if (info->stringColumn != nullptr) {
        CopyText(*this, format, field, source_record, target_record);
    }
}

void MemoryResidentData::CopyItemInfo(std::int32_t source_record, std::int32_t target_record, std::int32_t format) {
    const formats_info* const info = FindFormat(format);
    if (info == nullptr) {
        return;
    }
    for (std::size_t i = 0; i < info->fields.size(); ++i) {
        if (MovesWithRow(info->fields[i])) {
            const KeptTargets kept(*info, info->fields[i], target_record, target_record);
            CopyField(format, static_cast<std::int32_t>(i), source_record, target_record);
            kept.Restore();
        }
    }
    CopyMatrixItemInfo(source_record, target_record, format);
    if (info->updateColumn != nullptr) {
        info->updateColumn->SetValue(target_record, info->updateColumn->GetValue(source_record));
    }
}

void MemoryResidentData::SwapItemInfo(std::int32_t record1, std::int32_t record2, std::int32_t format) {
    const formats_info* const info = FindFormat(format);
    if (info == nullptr) {
        return;
    }
    for (std::size_t i = 0; i < info->fields.size(); ++i) {
        const field_info& field = info->fields[i];
        if (!MovesWithRow(field) || HasClass(field, Classes::kAdditionalReference)) {
            continue;
        }
        const KeptTargets kept(*info, field, record1, record2);
        if (!HoldsText(field)) {
            SwapValues(*this, format, static_cast<std::int32_t>(i), record1, record2);
        } else if (field.stringColumn != nullptr) {
            SwapTexts(*this, format, static_cast<std::int32_t>(i), record1, record2);
        }
        kept.Restore();
    }
    SwapMatrixItemInfo(record1, record2, format);
    if (info->updateColumn != nullptr) {
        SwapUpdates(*info->updateColumn, record1, record2);
    }
}

bool MemoryResidentData::ItemInfoIsEqual(std::int32_t record1, std::int32_t record2, std::int32_t format) {
    const formats_info* const info = FindFormat(format);
    if (info == nullptr) {
        return true;
    }
    for (std::size_t i = 0; i < info->fields.size(); ++i) {
        if (MovesWithRow(info->fields[i]) &&
            !CellsAreEqual(*this, format, static_cast<std::int32_t>(i), record1, record2)) {
            return false;
        }
    }
    return true;
}

} // namespace Kestrona::Data::MemoryResident
