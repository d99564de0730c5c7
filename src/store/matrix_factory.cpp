#include "store/matrix_factory.h"

#include "store/column_factory.h"

#include <kestrona/classes.h>
#include <kestrona/evaluate_columns.h>
#include <kestrona/record_state.h>

namespace Kestrona::Data::MemoryResident {

namespace {

// Matrices are tracked by other rules than cells: a display sequence without an owner is, a scratch record never.
NewStrategy CreateMatrixStrategy(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                 std::int32_t record) {
    if (record >= kFirstScratchRecord || store.ClassDefined(format, field, Classes::kExcludeFromDb) ||
        store.ClassDefined(format, store.GetDbKey(format), Classes::kExcludeFromDb)) {
        return NewStrategy(new NullRecordStateStrategy());
    }
    return NewStrategy(new RecordStateStrategy(store.GetFormatInfo(format), format));
}

} // namespace

std::unique_ptr<MatrixColumn> CreateMatrixColumn(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                                 std::int32_t record) {
    const double default_value = store.GetDbDefaultValue(format, field);
    if (store.ClassDefined(format, field, Classes::kEvaluate)) {
        return std::make_unique<MatrixEvaluateColumn>(NewStrategy(new NullRecordStateStrategy()), default_value, format,
                                                      field, store);
    }
    return std::make_unique<MatrixColumn>(CreateMatrixStrategy(store, format, field, record), default_value);
}

} // namespace Kestrona::Data::MemoryResident
