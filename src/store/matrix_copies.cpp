// Implements: CopyMatrix, SwapMatrix, CopyMatrixItemInfo, SwapMatrixItemInfo.
#include "columns/matrix_table.h"
#include "store/class_test.h"
#include "store/dimensioned_fields.h"
#include "store/record_matrices.h"
#include "store/row_fields.h"
#include "store/row_shuffle.h"

#include <kestrona/classes.h>
#include <kestrona/free_strings.h>
#include <kestrona/matrices.h>
#include <kestrona/store.h>

#include <algorithm>
#include <array>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr std::int32_t kNoRecord = -1;

struct MatrixPlace {
    std::int32_t format;
    std::int32_t field;
    std::int32_t record;
};

// Within a format a list moves by its identity: the copy is the same list. So does the one matrix of COMMON MATRIX. A
// copy into another format never shares, since either format may be destroyed.
bool SharesIdentity(const field_info& target, bool same_format) {
    return same_format && MovesByIdentity(target);
}

// A list that no cell holds any more goes. Rows that are only passing through hold theirs twice for a while.
//
// The new holder is counted before it is one: where the write fails, a list stays that could go, and not the other way
// round.
void ShareIdentity(const field_info& target, std::int32_t record, std::int32_t id) {
    MatrixTable& table = MatrixTable::Instance();
    const std::int32_t former = MatrixIdOf(target, record);
    const bool is_counted = former != id && !RowShuffle::IsRunning();
    if (is_counted) {
        table.NoteSharing(id);
    }
    target.matrixColumn->SetValue(record, id);
    if (is_counted && !HasClass(target, Classes::kCommonMatrix)) {
        table.Leave(former);
    }
}

// Where a write fails, both cells may hold the second id.
void SwapIdentities(IColumn<std::int32_t>& identities, std::int32_t record1, std::int32_t record2) {
    const std::int32_t id1 = identities.GetValue(record1);
    const std::int32_t id2 = identities.GetValue(record2);
    try {
        identities.SetValue(record1, id2);
        identities.SetValue(record2, id1);
    } catch (...) {
        MatrixTable::Instance().NoteUnknownSharing(id2);
        throw;
    }
}

// Whether the cells are keys of stored strings that the copy must look after.
bool RefersToStrings(const field_info& target, const MatrixPlace& from, const MatrixPlace& to) {
    return HasClass(target, Classes::kStringStorage) && !RowShuffle::IsRunning() && from.record < kFirstScratchRecord &&
           to.record < kFirstScratchRecord;
}

// The value of a copied string reference: itself, unless its string has gone. Then the text of the source goes with the
// copy.
double CopiedReference(IMemoryResidentData& store, const MatrixPlace& from, const MatrixPlace& to, double key) {
    const std::int32_t storage = store.GetDbData(to.format, to.field, DataSlot::kStorageFormat);
    if (store.LookupKeyRecord(storage, key) != kNoRecord) {
        return key;
    }
    return KSDLL_CreateFreeString(store, to.format, to.field, to.record,
                                  store.GetDbString(from.format, from.field, from.record));
}

// Copies `size` stored cells block by block.
void CopyBlocks(const MatrixCells& source, MatrixCells& target, std::int32_t size) {
    std::array<double, 64> block;
    for (std::int32_t first = 0; first < size;) {
        const std::int32_t length = std::min(static_cast<std::int32_t>(block.size()), size - first);
        source.ReadBlock(first, length, block.data());
        for (std::int32_t i = 0; i < length; ++i) {
            target.SetValue(first + i, block[static_cast<std::size_t>(i)]);
        }
        first += length;
    }
}

void CopyElements(IMemoryResidentData& store, const MatrixPlace& from, const MatrixPlace& to, std::int32_t id,
                  std::uint32_t size, bool refers) {
    for (std::uint32_t index = 0; index < size; ++index) {
        const double value = KSDLL_GetMatrixValue(store, from.format, from.field, from.record, index);
        KSDLL_SetMatrixValue(id, index, refers ? CopiedReference(store, from, to, value) : value);
    }
}

// Gives the target the size of the source, 0 for none, and its cells.
void CopyCells(IMemoryResidentData& store, const field_info& target, const MatrixPlace& from, const MatrixPlace& to,
               std::int32_t source_id) {
    const std::int32_t size = KSDLL_GetMatrixSize(source_id);
    const auto elements = static_cast<std::uint32_t>(size);
    const std::int32_t id = KSDLL_CreateMatrix(store, elements, to.format, to.field, to.record);
    const MatrixEntry* const source_entry = FindMatrixEntry(source_id);
    MatrixEntry* const entry = FindMatrixEntry(id);
    if (entry == nullptr || entry->isCalculated || source_entry == entry) {
        return; // a calculated matrix keeps no cells
    }
    const bool refers = RefersToStrings(target, from, to);
    if (source_entry != nullptr && !source_entry->isCalculated && !refers) {
        CopyBlocks(source_entry->cells, entry->cells, size);
    } else {
        CopyElements(store, from, to, id, elements, refers);
    }
}

} // namespace

void MemoryResidentData::CopyMatrix(std::int32_t source_format, std::int32_t source_field, std::int32_t source_record,
                                    std::int32_t target_format, std::int32_t target_field, std::int32_t target_record) {
    const field_info* const source = FindField(source_format, source_field);
    const field_info* const target = FindField(target_format, target_field);
    if (source == nullptr || target == nullptr || !HoldsMatrices(*target)) {
        return;
    }
    const std::int32_t id = MatrixIdOf(*source, source_record);
    if (SharesIdentity(*target, source_format == target_format)) {
        ShareIdentity(*target, target_record, id);
    } else {
        CopyCells(*this, *target, {source_format, source_field, source_record},
                  {target_format, target_field, target_record}, id);
    }
}

void MemoryResidentData::SwapMatrix(std::int32_t format, std::int32_t field, std::int32_t record1,
                                    std::int32_t record2) {
    const field_info* const info = FindField(format, field);
    if (info != nullptr && HoldsMatrices(*info) && !HasClass(*info, Classes::kCommonMatrix)) {
        SwapIdentities(*info->matrixColumn, record1, record2);
    }
}

void MemoryResidentData::CopyMatrixItemInfo(std::int32_t source_record, std::int32_t target_record,
                                            std::int32_t format) {
    const formats_info* const info = FindFormat(format);
    const auto fields = info != nullptr ? static_cast<std::int32_t>(info->fields.size()) : 0;
    for (std::int32_t field = 0; field < fields; ++field) {
        CopyMatrix(format, field, source_record, format, field, target_record);
    }
}

// A field that borrows its identities leaves them to their owner: swapped twice, they would stay where they are.
void MemoryResidentData::SwapMatrixItemInfo(std::int32_t record1, std::int32_t record2, std::int32_t format) {
    const formats_info* const info = FindFormat(format);
    const auto fields = info != nullptr ? static_cast<std::int32_t>(info->fields.size()) : 0;
    for (std::int32_t field = 0; field < fields; ++field) {
        if (!ClassDefined(format, field, Classes::kAdditionalReference)) {
            SwapMatrix(format, field, record1, record2);
        }
    }
}

} // namespace Kestrona::Data::MemoryResident
