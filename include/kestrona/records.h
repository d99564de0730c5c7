#pragma once

#include <kestrona/memory_resident_data.h>
#include <kestrona/store.h>

#include <cstdint>
#include <vector>

/// \file
/// Records that come and go.
///
/// Records are positional: a new one moves those behind it one number up, a deleted one moves them down. What depends
/// on the position or the number of records follows: matrices that a format dimensions get or lose cells, and keys of
/// deleted records go from the lists that name them. Formats with an extension are left alone by changes of others.
///
/// Every call invalidates record numbers at and behind the place of change, and views that searches gave out.
///
/// Threads: one at a time, also for different stores.

/// Opens a new record at position `record`; a position that the format does not have means its end. The record has the
/// defaults of its fields, an empty list in each list field, and a matrix of the right size in each other matrix field.
/// A row in the middle passes through scratch record 999900000, whose lists are none afterwards. Calls the hooks of the
/// sequencer for its orders. Returns 0; a format that does not exist is left alone.
///
/// Costs the fields at the end, one move of each column in the middle, and the cells of every matrix that the format
/// dimensions.
KS_API std::int32_t KSDLL_InsertDbItem(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                       std::int32_t record);
/// Appends a record, gives it the next key (`find_next_value`) and returns its number; -1 for a format that does not
/// exist.
KS_API std::int32_t KSDLL_CreateRecord(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format);
/// Writes the value that a new key would get to `value`: the largest value of the field, 0.0 in a format without
/// records, plus the field's default but at most 1.0. A field that does not exist gives 0.0.
KS_API void find_next_value(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                            std::int32_t field, double* value);

/// Deletes a record. The records whose keys stand in its lists of stored strings go with it, and so on; whatever leads
/// back to a record that is going is deleted once. Calls the hooks of the sequencer for its orders.
///
/// A number that is no record takes no cell away, but the record count drops by one all the same, not below 0.
KS_API void KSDLL_DeleteDbItem(Kestrona::Data::MemoryResident::MemoryResidentData& store, std::int32_t format,
                               std::int32_t record);
/// Deletes many records at once, like one by one, in one pass over each column, list and matrix. The order of
/// `records` does not matter; numbers that come twice count once, those that are no record do not count. The hooks get
/// the list that is left, ascending.
KS_API void KSDLL_DeleteDbItems(Kestrona::Data::MemoryResident::MemoryResidentData& store, std::int32_t format,
                                std::vector<std::int32_t> records);
/// Empties a format: sets its size to 0 and frees its matrices.
KS_API void KSDLL_Clear(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format);

/// Takes the cells of records of the format `deleted_from`, which still stand, out of the one-dimensional matrix that
/// `record` has in `field`. Nothing where that format does not dimension the matrix.
KS_API void ResizeOneDMatrix(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                             std::int32_t field, std::int32_t record, std::int32_t deleted_from,
                             std::vector<std::int32_t> records);
/// The same for a two-dimensional matrix, which loses rows, columns or both, and gets the size that is left. In a field
/// with COMMON MATRIX only record 0 counts.
KS_API void ResizeTwoDMatrix(Kestrona::Data::MemoryResident::MemoryResidentData& store, std::int32_t format,
                             std::int32_t field, std::int32_t record, std::int32_t deleted_from,
                             std::vector<std::int32_t> records);

/// Fills one field of a record that has just been made: with the time of now, the next key, the field's default or its
/// default text, whichever its classes ask for; then fills a list that begins with every entry selected, and the lists
/// beside it. `skip_field1` and `skip_field2` get no default. On a `level` above 1 only fields with a default on deeper
/// levels get one. The last two arguments are not used.
KS_API void KSDLL_SetDefaultFieldValue(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                       std::int32_t field, std::int32_t record, std::int32_t skip_field1,
                                       std::int32_t skip_field2, std::int32_t level, std::int32_t auto_list_field,
                                       double auto_list_value);
