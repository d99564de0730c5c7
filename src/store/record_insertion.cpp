// Implements: KSDLL_InsertDbItem, KSDLL_CreateRecord, find_next_value.
#include "columns/matrix_table.h"
#include "store/as_store.h"
#include "store/class_test.h"
#include "store/hooks.h"
#include "store/matrix_growth.h"
#include "store/new_record_matrices.h"
#include "store/record_matrices.h"
#include "store/row_shift.h"
#include "store/row_shuffle.h"
#include "store/sequencer_orders.h"

#include <kestrona/classes.h>
#include <kestrona/records.h>
#include <kestrona/services.h>

#include <algorithm>

namespace {

using namespace Kestrona;
using namespace Kestrona::Data::MemoryResident;

constexpr const wchar_t* kInserting = L"Inserting an Item";
constexpr const wchar_t* kMatricesDone = L"Array sizes adjusted";
constexpr const wchar_t* kShuffleDone = L"Field shuffle is done";
constexpr double kLargestKeyStep = 1.0;
constexpr double kKeyBeforeFirst = 0.0;

bool GetsDefault(const field_info& field) {
    return (field.type & (TypeBit::kFreeString | TypeBit::kMatrix)) == 0 && !HasClass(field, Classes::kFreeFormat) &&
           !HasClass(field, Classes::kEvaluate) && !HasClass(field, Classes::kAutomaticKey);
}

template <typename Action>
void ForEachListField(const formats_info& info, Action action) {
    for (const field_info& field : info.fields) {
        if (field.matrixColumn != nullptr && HasClass(field, Classes::kList)) {
            action(field);
        }
    }
}

void ClearScratchCell(const field_info& field) {
    field.matrixColumn->SetValue(KSDLL_GetScratchRecord(), MatrixTable::kNoId);
}

// The list that the scratch record has from an earlier copy goes, unless a row has it too.
void LeaveScratchList(const field_info& field) {
    const std::int32_t id = MatrixIdOf(field, KSDLL_GetScratchRecord());
    ClearScratchCell(field);
    MatrixTable::Instance().Leave(id);
}

// Brings the last row to `record`, by way of the scratch record; the rows from there on move one up. Where that breaks
// off, two rows may have one list.
void MoveLastRowTo(MemoryResidentData& store, std::int32_t format, std::int32_t record, std::int32_t last) {
    const formats_info& info = *store.GetFormatInfo(format);
    ForEachListField(info, LeaveScratchList);
    const RowShuffle shuffle;
    try {
        store.CopyItemInfo(last, KSDLL_GetScratchRecord(), format);
        ShiftRowsUp(store, format, record, last);
        store.CopyItemInfo(KSDLL_GetScratchRecord(), record, format);
    } catch (...) {
        ForEachListField(info, ForgetHolders);
        throw;
    }
    ForEachListField(info, ClearScratchCell); // its lists have a row now
}

void WriteDefaults(IMemoryResidentData& store, std::int32_t format, std::int32_t record) {
    const std::vector<field_info>& fields = store.GetFormatInfo(format)->fields;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (!GetsDefault(fields[i]) || fields[i].column == nullptr) {
            continue;
        }
        const bool has_text = HasClass(fields[i], Classes::kStringDefault);
        const double value =
            has_text ? store.GetDbDefaultValue(format, static_cast<std::int32_t>(i)) : fields[i].defaultValue;
        fields[i].column->SetValue(record, value);
    }
}

void CallHooks(std::int32_t format, std::int32_t record) {
    if (!HasSequencerHooks(format)) {
        return;
    }
    for (const KsRecordHook hook : {GetSequencerHooks().first_after_insert, GetSequencerHooks().second_after_insert}) {
        if (hook != nullptr) {
            hook(record);
        }
    }
}

} // namespace

std::int32_t KSDLL_InsertDbItem(IMemoryResidentData& store, std::int32_t format, std::int32_t record) {
    const formats_info* const info = store.GetFormatInfo(format);
    if (info == nullptr) {
        return 0;
    }
    KSDLL_WriteDebug(kInserting);
    store.ChangeCurrentDbSize(format, 1);
    MakeMatricesOfNewRecord(store, format);
    KSDLL_WriteDebug(kMatricesDone);
    const std::int32_t last = info->recordCount - 1;
    const std::int32_t place = record >= 0 ? std::min(record, last) : last;
    if (place < last) {
        MoveLastRowTo(AsStore(store), format, place, last);
    }
    WriteDefaults(store, format, place);
    KSDLL_WriteDebug(kShuffleDone);
    GrowMatrices(store, format, place);
    CallHooks(format, place);
    return 0;
}

std::int32_t KSDLL_CreateRecord(IMemoryResidentData& store, std::int32_t format) {
    if (store.GetFormatInfo(format) == nullptr) {
        return -1;
    }
    double key = 0.0;
    find_next_value(store, format, store.GetDbKey(format), &key);
    const std::int32_t record = store.GetCurrentDbSize(format);
    KSDLL_InsertDbItem(store, format, record);
    store.SetDbKeyValue(format, record, key);
    return record;
}

void find_next_value(IMemoryResidentData& store, std::int32_t format, std::int32_t field, double* value) {
    const field_info* const info = store.GetFieldInfo(format, field);
    if (info == nullptr) {
        *value = kKeyBeforeFirst;
        return;
    }
    const bool has_values =
        store.GetCurrentDbSize(format) > 0 && info->column != nullptr && info->column->GetCurrentSize() > 0;
    const double largest = has_values ? store.GetMaxValueForColumn(format, field, false) : kKeyBeforeFirst;
    *value = largest + std::min(store.GetDbDefaultValue(format, field), kLargestKeyStep);
}
