#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>

// The elements of matrix fields, as field reads see them.
namespace Kestrona::Expressions {

// Tells whether the field has matrices and the record has one.
bool HasMatrix(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, std::int32_t field,
               std::int32_t record);

// Returns an element of the record's matrix.
double MatrixElement(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                     std::int32_t record, std::int32_t index);

} // namespace Kestrona::Expressions
