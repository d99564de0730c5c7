#include "store/dimensioned_fields.h"

#include "columns/matrix_table.h"
#include "store/class_test.h"

#include <kestrona/classes.h>

#include <algorithm>

namespace Kestrona::Data::MemoryResident {

bool HoldsMatrices(const field_info& field) {
    return (field.type & TypeBit::kMatrix) != 0 && field.matrixColumn != nullptr;
}

bool OwnsMatrices(const field_info& field) {
    return HoldsMatrices(field) && !HasClass(field, Classes::kAdditionalReference);
}

bool IsAnyList(const field_info& field) {
    return HasClass(field, Classes::kList) || HasClass(field, Classes::kParallelList);
}

bool IsDimensionedBy(const field_info& field, std::int32_t format) {
    return (field.table == format || field.tableY == format) && OwnsMatrices(field) && !IsAnyList(field);
}

std::uint32_t GridSize(std::int64_t size_x, std::int64_t size_y) {
    const std::int64_t size = size_x * size_y;
    return size < MatrixTable::kSizeLimit ? static_cast<std::uint32_t>(size) : 0;
}

std::uint32_t FullSize(IMemoryResidentData& store, const field_info& field) {
    const std::int32_t size_x = HasClass(field, Classes::k3DMatrix) ? store.GetCurrentDbSize(field.table) : 1;
    return GridSize(size_x, store.GetCurrentDbSize(field.tableY));
}

std::int32_t MatrixOwners(IMemoryResidentData& store, std::int32_t format, const field_info& field) {
    const std::int32_t records = store.GetCurrentDbSize(format);
    return HasClass(field, Classes::kCommonMatrix) ? std::min(records, 1) : records;
}

bool FollowsOthers(const formats_info& format) {
    return format.name && !format.extension;
}

} // namespace Kestrona::Data::MemoryResident
