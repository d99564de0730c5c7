#pragma once

#include <kestrona/column.h>
#include <kestrona/schema_records.h>

#include <cstdint>

// The way from a record to its matrices, through the identity columns of matrix fields.
//
// An identity column owns the matrices that it names: whoever frees the column frees them first.
namespace Kestrona::Data::MemoryResident {

class MatrixCells;
struct MatrixEntry;

// The id of the record's matrix, -1 for none.
std::int32_t MatrixIdOf(const field_info& field, std::int32_t record);

// The entry with this id, null when it is no matrix. Nobody else counts as a matrix.
MatrixEntry* FindMatrixEntry(std::int32_t id);

// The stored elements of the record's matrix, null when it has none: nothing of a calculated one ever changes.
MatrixCells* FindCells(const field_info& field, std::int32_t record);

// Whether the record has a matrix of this size already, so that nothing need be made or resized.
bool HasMatrixOfSize(const field_info& field, std::int32_t record, std::uint32_t size);

// Sets the size of every matrix of the field to 0, up to the first record without one.
void EmptyMatrices(field_info& field);

// Nobody knows any more which cells of the field hold which matrix: none goes before its column does.
void ForgetHolders(const field_info& field);

// Frees the matrices of every record of every field. The scratch records keep theirs.
void FreeMatrices(formats_info& format);

// Frees every matrix that the column names, those of the scratch records included, for a column that goes: a file may
// then have the ids.
void FreeOwnedMatrices(const IColumn<std::int32_t>& identities);

} // namespace Kestrona::Data::MemoryResident
