#pragma once

#include <kestrona/memory_resident_data.h>
#include <kestrona/store.h>
#include <kestrona/types.h>

#include <cstdint>

/// \file
/// Matrices: a whole list, or a grid of numbers, held by one cell.
///
/// A matrix field keeps for each record the id of a matrix. The matrices stand in one table of the process, shared by
/// all stores. An id is never used again; -1 means no matrix. A one-dimensional matrix has one element for each record
/// of the field's Y format (`GetDbTableY`); in a two-dimensional one (3DMATRIX) the element of record x of the X format
/// (`GetDbTable`) and record y of the Y format has the index x * (records of the Y format) + y. A list is a
/// one-dimensional matrix of any size.
///
/// An id that is negative or unknown, or whose matrix has been freed, is no matrix everywhere: it reads 0.0 and drops
/// what is written. A size or index of 0x7fffffff or more is refused: the matrix is made with size 0, the write is
/// dropped.
///
/// Threads: one at a time.

/// Makes the matrix of a record, or gives the one that it has a new size, and returns its id; -1 where the field keeps
/// no matrices. A new size moves no element: a larger matrix reads the field's default there, and elements behind a
/// smaller one are kept and come back when it grows. In a field with COMMON MATRIX every record has the matrix of
/// record 0. A record number that no cell has gets no matrix.
KS_API std::int32_t KSDLL_CreateMatrix(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::uint32_t size,
                                       std::int32_t format, std::int32_t field, std::int32_t record);
/// Keeps the ids below `count` from being given out, so that a file's matrices can have them, and raises
/// `GetTotalMatrixCount` to at least `count`. Never lowers anything; a count above 2^30 counts as that.
KS_API void KSDLL_ReserveMatrixIds(std::int32_t count);
/// Frees a matrix. The id stays in the cells that hold it, and `KSDLL_CreateMatrix` makes a new matrix under it.
KS_API void KSDLL_FreeMatrix(std::int32_t id);
/// Frees the matrices of every record of a format.
KS_API void KSDLL_FreeMatrices(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format);
/// Frees the elements of every matrix of the process. The ids keep their sizes, and stay unused.
KS_API void KSDLL_FreeMatrixMemory();
/// Sets the size to 0. The elements are kept.
KS_API void KSDLL_ZeroMatrixSize(std::int32_t id);
/// Gives a matrix a new size, like `KSDLL_CreateMatrix`, and reports each element that comes or goes as changed. The
/// last two numbers are not used.
KS_API void KSDLL_ResizeMatrix(std::int32_t id, std::uint32_t size, std::int32_t unused1, std::int32_t unused2);
/// Returns the number of elements.
KS_API std::int32_t KSDLL_GetMatrixSize(std::int32_t id);
/// Returns an element of the record's matrix. The element right behind the last one can be read; any other outside is
/// 0.0. A calculated matrix computes whatever element it is asked for.
KS_API double KSDLL_GetMatrixValue(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                   std::int32_t field, std::int32_t record, std::uint32_t index);
/// The same from the id; `record` is the owner, which matters to a calculated matrix.
KS_API double KSDLL_GetMatrixValueFromId(std::int32_t id, std::int32_t record, std::uint32_t index);
/// Stores an element, the one right behind the last included. Further out the matrix grows to `index` elements and the
/// value is lost: size a matrix before filling it.
KS_API void KSDLL_SetMatrixValue(std::int32_t id, std::uint32_t index, double value);
/// Removes one element; those behind it move up.
KS_API void KSDLL_DeleteMatrixRow(std::int32_t id, std::int32_t row);
/// Returns the id of the record's matrix, -1 for none.
KS_API std::int32_t KSDLL_GetDbMatrix(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                      std::int32_t field, std::int32_t record);
/// Returns the list field that a list runs parallel to, -1 for a wrong field.
KS_API std::int32_t KSDLL_GetDbMatrixField(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                           std::int32_t format, std::int32_t field);
KS_API void KSDLL_SetDbMatrixField(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                   std::int32_t field, std::int32_t value);
/// Returns the label of the first dimension, null for none. The store owns it; valid until it is set again.
KS_API wchar_t* KSDLL_GetMatrixXLabel(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                      std::int32_t field);
/// Likewise of the second dimension.
KS_API wchar_t* KSDLL_GetMatrixYLabel(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                      std::int32_t field);
/// Takes ownership of `label`, which comes from `malloc` or is null, also where there is no such field: then it is
/// freed.
KS_API void KSDLL_SetMatrixXLabel(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                  std::int32_t field, wchar_t* label);
/// Likewise.
KS_API void KSDLL_SetMatrixYLabel(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                  std::int32_t field, wchar_t* label);
/// Reads `field` of the record as a key of `other_format` and returns the id that `other_field` has there, -1 where no
/// record has the key.
KS_API std::int32_t KSDLL_LocateMatrixId(Kestrona::Data::MemoryResident::MemoryResidentData& store, std::int32_t format,
                                         std::int32_t field, std::int32_t other_format, std::int32_t record,
                                         std::int32_t other_field);
/// Tells whether a matrix of the field has changed; true for a matrix field of a format without records.
KS_API bool KSDLL_GetMatrixChanged(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                   std::int32_t field);
/// Returns 2 where the record's matrix tells that the record has changed, else 0. Matrices mark their elements in the
/// change set of their format, so that element 3 of any matrix marks record 3.
KS_API std::int32_t KSDLL_GetMatrixRecordState(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                               std::int32_t format, std::int32_t field, std::int32_t record);
/// Forgets the changes of the field's matrices.
KS_API void KSDLL_ResetMatrixChanged(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                     std::int32_t field);
/// Returns the number of ids that the table has room for: 128 at first, then twice as many, from 4096 on 4096 more each
/// time.
KS_API std::int32_t GetTotalMatrixCount();

/// Which cell of a matrix a dialog of the host is editing.
struct MatrixDialogInfo {
    bool active = false;
    std::int32_t xIndex = -1;
    std::int32_t yIndex = -1;
    std::int32_t dialogField = -1;
};

/// Set by the host while such a dialog is open; the library only reads it.
extern KS_API MatrixDialogInfo matrixDialogInfo;

/// Tells whether a matrix field gets a dialog of its own: false for the field that the dialog is open for, for those
/// that run parallel to it, and for a field that is no matrix.
KS_API bool TreatMatrixAsDialog(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                std::int32_t field);
/// Returns a cell as an open dialog shows it: of a matrix field the element that `matrixDialogInfo` names, or the
/// field's default when it is not active; else `GetDbValue`.
///
/// Requires: `format` and `field` in range.
KS_API double GetReferencedValue(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                 std::int32_t field, std::int32_t record);
/// Stores a cell likewise: an element of the record's matrix, else `SetDbValue`.
///
/// Requires: `format` and `field` in range.
KS_API void SetReferencedValue(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                               std::int32_t field, std::int32_t record, double value);
