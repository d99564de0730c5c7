#pragma once

#include <kestrona/column.h>
#include <kestrona/memory_resident_data.h>
#include <kestrona/record_state_strategy.h>

#include <cstdint>
#include <memory>
#include <string>

// Which field gets which column. Every column gets a strategy of its own.
namespace Kestrona::Data::MemoryResident {

// A strategy on its way into a column, which owns it once it has its own memory: the strategy is given up where the
// column's constructor is called.
class NewStrategy {
public:
    explicit NewStrategy(IRecordStateStrategy* strategy) : strategy_(strategy) {}

    operator IRecordStateStrategy*() && { return strategy_.release(); }

private:
    std::unique_ptr<IRecordStateStrategy> strategy_;
};

// The strategy of a field's columns: none for fields and formats that are excluded from the database, and for a display
// sequence without an owner in the format.
NewStrategy CreateRecordStateStrategy(IMemoryResidentData& store, std::int32_t format, std::int32_t field);

// The value column that the type code asks for.
std::unique_ptr<IColumn<double>> CreateTypedColumn(IMemoryResidentData& store, std::int32_t format, std::int32_t field);

// The value column that the type code and the classes ask for. `override_target` is the column that an OVERRIDE field
// also writes to. That of a calculated field computes it at each read.
std::unique_ptr<IColumn<double>> CreateValueColumn(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                                   IColumn<double>* override_target);

// The string column. That of a calculated field computes it at each read.
std::unique_ptr<IColumn<std::wstring>> CreateTextColumn(IMemoryResidentData& store, std::int32_t format,
                                                        std::int32_t field);

// The column of matrix identities of a field that does not share one.
std::unique_ptr<IColumn<std::int32_t>> CreateMatrixIdentityColumn(IMemoryResidentData& store, std::int32_t format,
                                                                  std::int32_t field);

// The column of a format's update numbers.
std::unique_ptr<IColumn<std::int32_t>> CreateUpdateColumn();

} // namespace Kestrona::Data::MemoryResident
