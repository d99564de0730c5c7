#include "store/list_filling.h"

#include "platform/format_text.h"
#include "store/class_test.h"
#include "text/date_messages.h"
#include "text/value_forms.h"

#include <kestrona/classes.h>
#include <kestrona/free_strings.h>
#include <kestrona/matrices.h>
#include <kestrona/services.h>
#include <kestrona/value_text.h>

#include <optional>
#include <vector>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr const wchar_t* kSelectAll = L"Select all Auto list entries";
constexpr const wchar_t* kKeyNotFound = L"ERROR :- Key Value of %lf not found in Database";
constexpr const wchar_t* kPlainNumber = L"%.2lf";
constexpr double kNothingSelected = -1.0;
constexpr std::int32_t kNoRecord = -1;

using Keys = std::vector<double>;

// A field of a record.
struct Cell {
    std::int32_t format;
    std::int32_t field;
    std::int32_t record;
};

// The text of a list entry.
std::wstring EntryText(IMemoryResidentData& store, const field_info& list, double key) {
    if (key != kNothingSelected) {
        const std::int32_t record = store.LookupKeyRecord(list.table, key);
        return record != kNoRecord ? KSDLL_FieldToTString(store, list.table, list.source, record)
                                   : Platform::FormatText(kPlainNumber, key);
    }
    const bool has_second_word = HasClass(list, Classes::kSequenceOwner) || HasClass(list, Classes::kSecondUnsetWord);
    return Text::Message(has_second_word ? Text::kSecondUnsetWord : Text::kUnsetWord);
}

// What the related field selects; nothing in particular without a related field, or without two steps to the source.
double SelectedBy(IMemoryResidentData& store, const Cell& cell, const field_info& list) {
    const bool is_direct = list.table == list.tableY && list.source == list.sourceY;
    if (is_direct || store.GetFieldInfo(cell.format, list.related) == nullptr) {
        return kNothingSelected;
    }
    return store.GetDbValue(cell.format, list.related, cell.record);
}

Keys AllKeys(IMemoryResidentData& store, std::int32_t format) {
    Keys keys;
    const std::int32_t records = store.GetCurrentDbSize(format);
    for (std::int32_t record = 0; record < records; ++record) {
        keys.push_back(store.GetDbKeyValue(format, record));
    }
    return keys;
}

Keys KeysInList(IMemoryResidentData& store, const Cell& list) {
    Keys keys;
    const std::int32_t size = KSDLL_GetMatrixSize(KSDLL_GetDbMatrix(store, list.format, list.field, list.record));
    for (std::int32_t i = 0; i < size; ++i) {
        keys.push_back(
            KSDLL_GetMatrixValue(store, list.format, list.field, list.record, static_cast<std::uint32_t>(i)));
    }
    return keys;
}

// The keys that the list begins with; nothing when the selected record does not exist.
std::optional<Keys> KeysToSelect(IMemoryResidentData& store, const Cell& cell, const field_info& list) {
    const double selected = SelectedBy(store, cell, list);
    if (selected == kNothingSelected) {
        return AllKeys(store, list.table);
    }
    const std::int32_t record = store.LookupKeyRecord(list.tableY, selected);
    if (record == kNoRecord) {
        KSDLL_WriteDebug(Platform::FormatText(kKeyNotFound, selected));
        return std::nullopt;
    }
    return KeysInList(store, {list.tableY, list.sourceY, record});
}

std::int32_t MakeList(IMemoryResidentData& store, const Cell& cell, std::size_t size) {
    return KSDLL_CreateMatrix(store, static_cast<std::uint32_t>(size), cell.format, cell.field, cell.record);
}

void FillParallel(IMemoryResidentData& store, const Cell& cell, const field_info& list, const Cell& parallel,
                  const Keys& keys) {
    const field_info& info = *store.GetFieldInfo(parallel.format, parallel.field);
    const std::int32_t id = MakeList(store, parallel, keys.size());
    if (!HasClass(info, Classes::kList) || info.tableY != cell.field) {
        return;
    }
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const double value = KSDLL_CreateFreeString(store, parallel.format, parallel.field, parallel.record,
                                                    EntryText(store, list, keys[i]));
        KSDLL_SetMatrixValue(id, static_cast<std::uint32_t>(i), value);
    }
}

} // namespace

void SelectAllEntries(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record) {
    KSDLL_WriteDebug(kSelectAll);
    const Cell cell{format, field, record};
    const field_info& list = *store.GetFieldInfo(format, field);
    const std::optional<Keys> keys = KeysToSelect(store, cell, list);
    if (!keys) {
        return;
    }
    const std::int32_t id = MakeList(store, cell, keys->size());
    for (std::size_t i = 0; i < keys->size(); ++i) {
        KSDLL_SetMatrixValue(id, static_cast<std::uint32_t>(i), (*keys)[i]);
    }
    const std::vector<field_info>& fields = store.GetFormatInfo(format)->fields;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (HasClass(fields[i], Classes::kParallelList) && fields[i].data[DataSlot::kAssociateField] == field) {
            FillParallel(store, cell, list, {format, static_cast<std::int32_t>(i), record}, *keys);
        }
    }
}

} // namespace Kestrona::Data::MemoryResident
