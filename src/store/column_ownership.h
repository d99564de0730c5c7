#pragma once

#include <kestrona/column.h>
#include <kestrona/schema_records.h>

#include <cstdint>
#include <memory>
#include <string>

// Who holds which column.
//
// A column belongs to all fields of its format that point at it and goes with the last of them. Which pointer of a
// field is meant is told by a slot: the value column, the string column or the column of matrix identities.
//
// An OVERRIDE column writes through a bare pointer to another column of the format (`field_info::overrideTarget`).
// Invariant: that pointer is null or one of the format's value columns, since an override is freed with its target.
namespace Kestrona::Data::MemoryResident {

template <typename T>
using ColumnSlot = IColumn<T>* field_info::*;

// Takes the column away from the field and frees it if no other field holds it.
template <typename T>
void DropColumn(formats_info& format, field_info& field, ColumnSlot<T> slot);

// Gives the field a new column, which may be null, and frees the former one. Fields that borrow the former column
// (ADDITIONAL REFERENCE) borrow the new one from then on; a borrower that gets a column of its own leaves the others
// be.
template <typename T>
void ReplaceColumn(formats_info& format, field_info& field, ColumnSlot<T> slot, std::unique_ptr<IColumn<T>> column);

// Puts an index in front of the column, for every field that holds it. Nothing without a column, for an indexed one and
// for a null column, which has nothing to index.
template <typename T>
void IndexColumn(formats_info& format, field_info& field, ColumnSlot<T> slot);

// The column that writes to an OVERRIDE column go through to, null for any other column.
IColumn<double>* FindOverrideTarget(const formats_info& format, const IColumn<double>* column);

// Frees every column of every field, and the update column.
void FreeColumns(formats_info& format);

extern template void DropColumn(formats_info&, field_info&, ColumnSlot<double>);
extern template void DropColumn(formats_info&, field_info&, ColumnSlot<std::wstring>);
extern template void DropColumn(formats_info&, field_info&, ColumnSlot<std::int32_t>);
extern template void ReplaceColumn(formats_info&, field_info&, ColumnSlot<double>, std::unique_ptr<IColumn<double>>);
extern template void ReplaceColumn(formats_info&, field_info&, ColumnSlot<std::wstring>,
                                   std::unique_ptr<IColumn<std::wstring>>);
extern template void ReplaceColumn(formats_info&, field_info&, ColumnSlot<std::int32_t>,
                                   std::unique_ptr<IColumn<std::int32_t>>);
extern template void IndexColumn(formats_info&, field_info&, ColumnSlot<double>);
extern template void IndexColumn(formats_info&, field_info&, ColumnSlot<std::wstring>);

} // namespace Kestrona::Data::MemoryResident
