#include "store/matrix_factory.h"

#include "store/column_factory.h"

#include <kestrona/classes.h>
#include <kestrona/evaluate_columns.h>
#include <kestrona/record_state_strategy.h>

namespace Kestrona::Data::MemoryResident {

namespace {

// Matrices are tracked by other rules than cells: a display sequence without an owner is, a scratch record never.
bool IsTracked(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record) {
    return record < kFirstScratchRecord && !store.ClassDefined(format, field, Classes::kExcludeFromDb) &&
           !store.ClassDefined(format, store.GetDbKey(format), Classes::kExcludeFromDb);
}

} // namespace

MatrixEntry MakeMatrix(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record,
                       std::uint32_t size) {
    MatrixEntry matrix;
    matrix.size = size;
    matrix.isCalculated = store.ClassDefined(format, field, Classes::kEvaluate);
    const double default_value = store.GetDbDefaultValue(format, field);
    if (matrix.isCalculated) {
        matrix.column = std::make_unique<MatrixEvaluateColumn>(NewStrategy(new NullRecordStateStrategy()),
                                                               default_value, format, field, store);
    } else {
        formats_info* const told = IsTracked(store, format, field, record) ? store.GetFormatInfo(format) : nullptr;
        matrix.cells = MatrixCells(told, format, default_value);
    }
    return matrix;
}

} // namespace Kestrona::Data::MemoryResident
