#pragma once

#include <kestrona/matrix_column.h>
#include <kestrona/memory_resident_data.h>

#include <cstdint>
#include <memory>

// Which matrix gets which column.
namespace Kestrona::Data::MemoryResident {

// The column of a matrix that `record` will own. Null for a calculated one that nothing computes.
std::unique_ptr<MatrixColumn> CreateMatrixColumn(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                                 std::int32_t record);

// The column that computes the matrix of an EVALUATE field from its expression. Null: this version evaluates nothing,
// and a matrix without a column reads 0.0 and drops what is written.
std::unique_ptr<MatrixColumn> CreateCalculatedMatrix(IMemoryResidentData& store, std::int32_t format,
                                                     std::int32_t field, double default_value);

} // namespace Kestrona::Data::MemoryResident
