#pragma once

#include <kestrona/column.h>
#include <kestrona/memory_resident_data.h>
#include <kestrona/record_state_strategy.h>

#include <cstdint>
#include <memory>
#include <string>

// Which field gets which column. Every column gets a strategy of its own.
namespace Kestrona::Data::MemoryResident {

// The strategy of a field's columns: none for fields and formats that are excluded from the database, and for a display
// sequence without an owner in the format. The caller, usually a column, owns it.
IRecordStateStrategy* CreateRecordStateStrategy(IMemoryResidentData& store, std::int32_t format, std::int32_t field);

// The value column that the type code asks for.
std::unique_ptr<IColumn<double>> CreateTypedColumn(IMemoryResidentData& store, std::int32_t format, std::int32_t field);

// The value column that the type code and the classes ask for. `override_target` is the column that an OVERRIDE field
// also writes to. Null for a calculated field.
std::unique_ptr<IColumn<double>> CreateValueColumn(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                                   IColumn<double>* override_target);

// The string column. Null for a calculated field.
std::unique_ptr<IColumn<std::wstring>> CreateTextColumn(IMemoryResidentData& store, std::int32_t format,
                                                        std::int32_t field);

// The column of matrix identities of a field that does not share one.
std::unique_ptr<IColumn<std::int32_t>> CreateMatrixIdentityColumn(IMemoryResidentData& store, std::int32_t format,
                                                                  std::int32_t field);

// The column of a format's update numbers.
std::unique_ptr<IColumn<std::int32_t>> CreateUpdateColumn();

// The columns that compute an EVALUATE field from its expression. Null: this version evaluates nothing, and a field
// without a column reads as its default, drops what is written and says so (`HasStorage`).
std::unique_ptr<IColumn<double>> CreateCalculatedColumn(IMemoryResidentData& store, std::int32_t format,
                                                        std::int32_t field);
std::unique_ptr<IColumn<std::wstring>> CreateCalculatedTextColumn(IMemoryResidentData& store, std::int32_t format,
                                                                  std::int32_t field);

} // namespace Kestrona::Data::MemoryResident
