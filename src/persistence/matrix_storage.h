#pragma once

#include <kestrona/store.h>

#include <cstdint>
#include <cstdio>

// The matrices of one field in a table data block: the column of their ids, then for each record int32 size and, unless
// that is 0, the column of the elements. A field with COMMON MATRIX has the matrix of record 0 alone.
namespace Kestrona::Persistence {

// Ids of a file end here; a cell with a larger one gets a new id.
inline constexpr std::int32_t kMaxFileMatrixIds = 1 << 26;

void WriteMatrices(Data::MemoryResident::MemoryResidentData& store, std::int32_t format, std::int32_t field,
                   std::FILE* file);

// Frees the matrices that the field had. An id of the file is kept where no other cell of the process may hold it; else
// the record gets a new one. Neither counts as a change.
void ReadMatrices(Data::MemoryResident::MemoryResidentData& store, std::int32_t format, std::int32_t field,
                  std::int32_t records, std::FILE* file);

// Makes an empty matrix for each record and reads nothing. The file's size bounds how many: a file that has no room for
// the keys of so many records is damaged.
void MakeCalculatedMatrices(Data::MemoryResident::MemoryResidentData& store, std::int32_t format, std::int32_t field,
                            std::int32_t records, std::FILE* file);

} // namespace Kestrona::Persistence
