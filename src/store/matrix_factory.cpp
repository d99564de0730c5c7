#include "store/matrix_factory.h"

#include <kestrona/classes.h>
#include <kestrona/record_state.h>

namespace Kestrona::Data::MemoryResident {

namespace {

// Matrices are tracked by other rules than cells: a display sequence without an owner is, a scratch record never.
IRecordStateStrategy* CreateMatrixStrategy(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                           std::int32_t record) {
    if (record >= kFirstScratchRecord || store.ClassDefined(format, field, Classes::kExcludeFromDb) ||
        store.ClassDefined(format, store.GetDbKey(format), Classes::kExcludeFromDb)) {
        return new NullRecordStateStrategy();
    }
    return new RecordStateStrategy(store.GetFormatInfo(format), format);
}

} // namespace

std::unique_ptr<MatrixColumn> CreateMatrixColumn(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                                 std::int32_t record) {
    const double default_value = store.GetDbDefaultValue(format, field);
    if (store.ClassDefined(format, field, Classes::kEvaluate)) {
        return CreateCalculatedMatrix(store, format, field, default_value);
    }
    return std::make_unique<MatrixColumn>(CreateMatrixStrategy(store, format, field, record), default_value);
}

std::unique_ptr<MatrixColumn> CreateCalculatedMatrix(IMemoryResidentData& /*store*/, std::int32_t /*format*/,
                                                     std::int32_t /*field*/, double /*default_value*/) {
    return nullptr;
}

} // namespace Kestrona::Data::MemoryResident
