// Implements: CreateDbValues, CreateSpecialisedDataStorage, CreateDbStrings, ClearStringColumn, CreateDbMatrix,
// AssignDbMatrix, CreateDbUpdate.
#include "store/class_test.h"
#include "store/column_factory.h"
#include "store/column_ownership.h"
#include "store/growing_fields.h"

#include <kestrona/classes.h>
#include <kestrona/concrete_columns.h>
#include <kestrona/store.h>

namespace Kestrona::Data::MemoryResident {

namespace {

// A column that is made when records stand already covers them.
template <typename T>
void InstallColumn(formats_info& format, field_info& field, ColumnSlot<T> slot, std::unique_ptr<IColumn<T>> column) {
    if (column != nullptr && format.recordCount > 0) {
        column->Resize(static_cast<std::uint32_t>(format.recordCount));
    }
    ReplaceColumn(format, field, slot, std::move(column));
}

// The column that an OVERRIDE field writes through to. The field's present column is about to be freed, so an override
// of itself writes to nothing else.
IColumn<double>* OverrideTarget(const field_info& field, const field_info* target) {
    if (target == nullptr || !HasClass(field, Classes::kOverride) || target->column == field.column) {
        return nullptr;
    }
    return target->column;
}

} // namespace

void MemoryResidentData::CreateDbValues(std::int32_t format, std::int32_t field) {
    field_info* const info = FindField(format, field);
    if (info == nullptr) {
        return;
    }
    IColumn<double>* const target = OverrideTarget(*info, FindField(format, info->tableY));
    std::unique_ptr<IColumn<double>> column = CreateValueColumn(*this, format, field, target);
    info->overrideTarget = dynamic_cast<OverrideDoubleColumn*>(column.get()) != nullptr ? target : nullptr;
    InstallColumn(*FindFormat(format), *info, &field_info::column, std::move(column));
    if (field == GetDbKey(format)) {
        IndexColumn(*FindFormat(format), *info, &field_info::column);
    }
}

void MemoryResidentData::CreateSpecialisedDataStorage(std::int32_t format, std::int32_t field) {
    if (field_info* const info = FindField(format, field)) {
        info->overrideTarget = nullptr;
        InstallColumn(*FindFormat(format), *info, &field_info::column, CreateTypedColumn(*this, format, field));
    }
}

void MemoryResidentData::CreateDbStrings(std::int32_t format, std::int32_t field) {
    if (field_info* const info = FindField(format, field)) {
        InstallColumn(*FindFormat(format), *info, &field_info::stringColumn, CreateTextColumn(*this, format, field));
    }
}

void MemoryResidentData::ClearStringColumn(std::int32_t format, std::int32_t field) {
    if (field_info* const info = FindField(format, field)) {
        info->stringColumn = nullptr;
    }
}

void MemoryResidentData::CreateDbMatrix(std::int32_t format, std::int32_t field) {
    field_info* const info = FindField(format, field);
    if (info == nullptr) {
        return;
    }
    ForgetGrowingFields();
    if (HasClass(*info, Classes::kAdditionalReference)) {
        AssignDbMatrix(format, field, info->tableY);
        return;
    }
    ReplaceColumn(*FindFormat(format), *info, &field_info::matrixColumn,
                  CreateMatrixIdentityColumn(*this, format, field));
}

void MemoryResidentData::AssignDbMatrix(std::int32_t format, std::int32_t to_field, std::int32_t from_field) {
    field_info* const to = FindField(format, to_field);
    const field_info* const from = FindField(format, from_field);
    if (to == nullptr || from == nullptr || to->matrixColumn == from->matrixColumn) {
        return;
    }
    DropColumn(*FindFormat(format), *to, &field_info::matrixColumn);
    to->matrixColumn = from->matrixColumn;
    ForgetGrowingFields();
}

void MemoryResidentData::CreateDbUpdate(std::int32_t format) {
    if (formats_info* const info = FindFormat(format)) {
        info->updateColumn = CreateUpdateColumn();
    }
}

} // namespace Kestrona::Data::MemoryResident
