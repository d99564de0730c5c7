#include "expressions/matrix_access.h"

#include <kestrona/matrices.h>

namespace Kestrona::Expressions {

bool HasMatrix(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, std::int32_t field,
               std::int32_t record) {
    constexpr std::int32_t kNoMatrix = -1;
    return KSDLL_GetDbMatrix(store, format, field, record) != kNoMatrix;
}

double MatrixElement(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                     std::int32_t record, std::int32_t index) {
    return KSDLL_GetMatrixValue(store, format, field, record, static_cast<std::uint32_t>(index));
}

} // namespace Kestrona::Expressions
