// Implements: the searches for records by key, value, text and row.
#include "store/class_test.h"

#include <kestrona/classes.h>
#include <kestrona/record_search.h>
#include <kestrona/store.h>
#include <kestrona/value_text.h>

#include <algorithm>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr double kNoFamily = -1.0;

template <typename T>
FindResult* FindIn(IColumn<T>* column, const T& value, FindOperator comparison) {
    return column != nullptr ? column->FindAll(value, comparison) : new FindResult();
}

template <typename T>
FindResult* DistinctIn(IColumn<T>* column) {
    return column != nullptr ? column->DistinctValues() : new FindResult();
}

// A field of this type and no other bit holds a text, or a reference: to a record, or to the entry of a string table.
bool IsPlainReference(const field_info& field) {
    return field.type == TypeBit::kReference;
}

bool RefersToRecords(const field_info& field) {
    return HasClass(field, Classes::kFamily) || HasClass(field, Classes::kDatabase) || HasClass(field, Classes::kList);
}

// Calculated fields are compared by what they show.
FindResult* RecordsShowing(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                           const std::wstring& text) {
    RecordNumbers records;
    for (std::int32_t record = 0; record < store.GetCurrentDbSize(format); ++record) {
        if (KSDLL_FieldToTString(store, format, field, record) == text) {
            records.push_back(record);
        }
    }
    return new FindResult(std::move(records));
}

FindResult* FamilyResult(RecordNumbers records) {
    std::ranges::sort(records);
    records.erase(std::unique(records.begin(), records.end()), records.end());
    return new FindResult(std::move(records));
}

} // namespace

std::int32_t MemoryResidentData::LookupKeyRecord(std::int32_t format, double key) {
    const formats_info* const info = FindFormat(format);
    if (info == nullptr || static_cast<std::uint32_t>(info->keyField) >= info->fields.size()) {
        return -1;
    }
    const IColumn<double>* const column = info->fields[static_cast<std::size_t>(info->keyField)].column;
    return column != nullptr ? column->Find(key) : -1;
}

FindResult* MemoryResidentData::LookupRecords(std::int32_t format, std::int32_t field, const wchar_t* text,
                                              FindOperator comparison) {
    return FindIn<std::wstring>(GetDbStringArray(format, field), text != nullptr ? text : L"", comparison);
}

FindResult* MemoryResidentData::LookupRecords(std::int32_t format, std::int32_t field, double value,
                                              FindOperator comparison) {
    return FindIn(GetDbColumn(format, field), value, comparison);
}

FindResult* MemoryResidentData::DistinctRecords(std::int32_t format, std::int32_t field) {
    AddIndexToColumn(format, field);
    const field_info* const info = FindField(format, field);
    if (info == nullptr) {
        return new FindResult();
    }
    const bool is_text = IsPlainReference(*info) && HasClass(*info, Classes::kFreeFormat);
    return is_text ? DistinctIn(info->stringColumn) : DistinctIn(info->column);
}

FindResult* MemoryResidentData::GetRecordsMatchingRow(std::int32_t format, std::int32_t field, std::int32_t record) {
    const field_info* const info = FindField(format, field);
    if (info == nullptr) {
        return new FindResult();
    }
    if (HasClass(*info, Classes::kFamily)) {
        const double family = GetDbValue(format, field, record);
        if (family != kNoFamily) {
            return FamilyResult(KSDLL_GetFamilyRecords(*this, format, family));
        }
    }
    if (HasClass(*info, Classes::kEvaluate)) {
        return RecordsShowing(*this, format, field, KSDLL_FieldToTString(*this, format, field, record));
    }
    AddIndexToColumn(format, field);
    if (IsPlainReference(*info) && !RefersToRecords(*info) && info->stringColumn != nullptr) {
        return FindIn(info->stringColumn, GetDbString(format, field, record), FindOperator::Equal);
    }
    return FindIn(info->column, GetDbValue(format, field, record), FindOperator::Equal);
}

double MemoryResidentData::GetMaxValueForColumn(std::int32_t format, std::int32_t field, bool exclude_default) {
    IColumn<double>* const column = GetDbColumn(format, field);
    return column != nullptr ? column->FindMaxValue(exclude_default) : GetDbDefaultValue(format, field);
}

double MemoryResidentData::GetMinValueForColumn(std::int32_t format, std::int32_t field, bool exclude_default) {
    IColumn<double>* const column = GetDbColumn(format, field);
    return column != nullptr ? column->FindMinValue(exclude_default) : GetDbDefaultValue(format, field);
}

} // namespace Kestrona::Data::MemoryResident
