#pragma once

#include <kestrona/column.h>
#include <kestrona/schema_records.h>

#include <cstdint>

// The matrices that records own through the identity columns of matrix fields. No operation of this version gives a
// record a matrix: every identity is -1, so no record has one and there is none to empty or to free. Whoever deals with
// the matrices of a record comes here.
namespace Kestrona::Data::MemoryResident {

// The column of the record's matrix, null when the record has none.
IColumn<double>* FindMatrix(const field_info& field, std::int32_t record);

// Sets the size of every matrix of the field to 0.
void EmptyMatrices(field_info& field);

// Frees every matrix of every field.
void FreeMatrices(formats_info& format);

} // namespace Kestrona::Data::MemoryResident
