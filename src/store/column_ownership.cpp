// Implements: the holding, sharing, replacing and freeing of columns.
#include "store/column_ownership.h"

#include "store/class_test.h"
#include "store/record_matrices.h"

#include <kestrona/classes.h>

#include <boost/iterator/transform_iterator.hpp>

#include <algorithm>
#include <utility>

namespace Kestrona::Data::MemoryResident {

namespace {

template <typename T>
bool IsHeld(const formats_info& format, ColumnSlot<T> slot, const IColumn<T>* column) {
    return std::ranges::any_of(format.fields, [&](const field_info& field) { return field.*slot == column; });
}

template <typename T>
void Repoint(formats_info& format, ColumnSlot<T> slot, const IColumn<T>* from, IColumn<T>* to) {
    for (field_info& field : format.fields) {
        if (field.*slot == from) {
            field.*slot = to;
        }
    }
}

// Takes away and frees every override that writes to `target`, and what in turn writes to those.
void FreeOverridesOf(formats_info& format, const IColumn<double>* target) {
    for (field_info& field : format.fields) {
        if (field.overrideTarget == target) {
            field.overrideTarget = nullptr;
            const std::unique_ptr<IColumn<double>> column(field.column);
            if (column != nullptr) {
                Repoint<double>(format, &field_info::column, column.get(), nullptr);
                FreeOverridesOf(format, column.get());
            }
        }
    }
}

// A column of matrix identities takes its matrices with it.
template <typename T>
void FreeColumn(IColumn<T>* column) {
    if constexpr (std::is_same_v<T, std::int32_t>) {
        if (column != nullptr) {
            FreeOwnedMatrices(*column);
        }
    }
    delete column;
}

template <typename T>
void FreeIfUnheld(formats_info& format, ColumnSlot<T> slot, IColumn<T>* column) {
    if (column == nullptr || IsHeld(format, slot, column)) {
        return;
    }
    if constexpr (std::is_same_v<T, double>) {
        FreeOverridesOf(format, column);
    }
    FreeColumn(column);
}

template <typename T>
struct ColumnOfField {
    ColumnSlot<T> slot;

    IColumn<T>*& operator()(field_info& field) const { return field.*slot; }
};

// Frees the columns that the fields hold in this slot, each once. They are sorted where they stand: a store that goes
// can ask for no memory.
template <typename T>
void FreeAllOf(formats_info& format, ColumnSlot<T> slot) {
    const auto first = boost::make_transform_iterator(format.fields.begin(), ColumnOfField<T>{slot});
    const auto last = boost::make_transform_iterator(format.fields.end(), ColumnOfField<T>{slot});
    std::sort(first, last);
    IColumn<T>* freed = nullptr;
    for (auto held = first; held != last; ++held) {
        IColumn<T>* const column = std::exchange(*held, nullptr);
        if (column != freed) {
            FreeColumn(column);
            freed = column;
        }
    }
}

} // namespace

template <typename T>
void DropColumn(formats_info& format, field_info& field, ColumnSlot<T> slot) {
    if constexpr (std::is_same_v<T, double>) {
        field.overrideTarget = nullptr;
    }
    FreeIfUnheld(format, slot, std::exchange(field.*slot, nullptr));
}

template <typename T>
void ReplaceColumn(formats_info& format, field_info& field, ColumnSlot<T> slot, std::unique_ptr<IColumn<T>> column) {
    IColumn<T>* const former = std::exchange(field.*slot, column.release());
    if (former != nullptr && !HasClass(field, Classes::kAdditionalReference)) {
        for (field_info& other : format.fields) {
            if (other.*slot == former && HasClass(other, Classes::kAdditionalReference)) {
                other.*slot = field.*slot;
            }
        }
    }
    FreeIfUnheld(format, slot, former);
}

template <typename T>
void IndexColumn(formats_info& format, field_info& field, ColumnSlot<T> slot) {
    IColumn<T>* const former = field.*slot;
    if (former == nullptr || former->IsNullColumn() || former->IsIndexedColumn()) {
        return;
    }
    IColumn<T>* const indexed = former->CreateIndexedColumn();
    Repoint(format, slot, former, indexed);
    if constexpr (std::is_same_v<T, double>) {
        Repoint(format, &field_info::overrideTarget, former, indexed);
    }
}

IColumn<double>* FindOverrideTarget(const formats_info& format, const IColumn<double>* column) {
    const auto owner = std::ranges::find_if(format.fields, [column](const field_info& field) {
        return field.column == column && field.overrideTarget != nullptr;
    });
    return owner != format.fields.end() ? owner->overrideTarget : nullptr;
}

void FreeColumns(formats_info& format) {
    for (field_info& field : format.fields) {
        field.overrideTarget = nullptr;
    }
    FreeAllOf(format, &field_info::column);
    FreeAllOf(format, &field_info::stringColumn);
    FreeAllOf(format, &field_info::matrixColumn);
    format.updateColumn.reset();
}

template void DropColumn(formats_info&, field_info&, ColumnSlot<double>);
template void DropColumn(formats_info&, field_info&, ColumnSlot<std::wstring>);
template void DropColumn(formats_info&, field_info&, ColumnSlot<std::int32_t>);
template void ReplaceColumn(formats_info&, field_info&, ColumnSlot<double>, std::unique_ptr<IColumn<double>>);
template void ReplaceColumn(formats_info&, field_info&, ColumnSlot<std::wstring>,
                            std::unique_ptr<IColumn<std::wstring>>);
template void ReplaceColumn(formats_info&, field_info&, ColumnSlot<std::int32_t>,
                            std::unique_ptr<IColumn<std::int32_t>>);
template void IndexColumn(formats_info&, field_info&, ColumnSlot<double>);
template void IndexColumn(formats_info&, field_info&, ColumnSlot<std::wstring>);

} // namespace Kestrona::Data::MemoryResident
