#pragma once

#include <kestrona/matrix_column.h>
#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <memory>

// Which matrix gets which column.
namespace Kestrona::Data::MemoryResident {

// The column of a matrix that `record` will own; that of an EVALUATE field computes its elements.
std::unique_ptr<MatrixColumn> CreateMatrixColumn(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                                 std::int32_t record);

} // namespace Kestrona::Data::MemoryResident
