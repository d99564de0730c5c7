#include "expressions/matrix_access.h"

namespace Kestrona::Expressions {

namespace {

constexpr std::int32_t kNoMatrix = -1;

} // namespace

bool HasMatrix(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, std::int32_t field,
               std::int32_t record) {
    const Data::MemoryResident::field_info* const info = store.GetFieldInfo(format, field);
    return info != nullptr && info->matrixColumn != nullptr && info->matrixColumn->GetValue(record) != kNoMatrix;
}

// The identities alone are kept, so an element is what a matrix without elements has.
double MatrixElement(Data::MemoryResident::IMemoryResidentData& /*store*/, std::int32_t /*format*/,
                     std::int32_t /*field*/, std::int32_t /*record*/, std::int32_t /*index*/) {
    return 0.0;
}

} // namespace Kestrona::Expressions
