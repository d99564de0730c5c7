#pragma once

#include "columns/matrix_table.h"

#include <kestrona/memory_resident_data.h>

#include <cstdint>

// Which matrix gets which elements.
namespace Kestrona::Data::MemoryResident {

// A matrix that `record` will own; that of an EVALUATE field computes its elements.
MatrixEntry MakeMatrix(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record,
                       std::uint32_t size);

} // namespace Kestrona::Data::MemoryResident
