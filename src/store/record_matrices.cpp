#include "store/record_matrices.h"

#include "columns/matrix_table.h"

#include <algorithm>
#include <array>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr std::int32_t kBlock = 1024;

// Calls `action` with the identities of `count` records from `first` on, until it answers false.
template <typename Action>
void ForEachIdentity(const IColumn<std::int32_t>& identities, std::int32_t first, std::int32_t count, Action action) {
    std::array<std::int32_t, kBlock> ids;
    for (std::int32_t done = 0; done < count; done += kBlock) {
        const std::int32_t length = std::min(kBlock, count - done);
        identities.ReadBlock(first + done, length, ids.data());
        if (!std::all_of(ids.begin(), ids.begin() + length, action)) {
            return;
        }
    }
}

// The column's own size counts: it never follows the record count.
std::int32_t Records(const IColumn<std::int32_t>& identities) {
    return static_cast<std::int32_t>(identities.GetCurrentSize());
}

bool FreeIdentity(std::int32_t id) {
    MatrixTable::Instance().Free(id);
    return true;
}

bool ReleaseIdentity(std::int32_t id) {
    MatrixTable::Instance().Release(id);
    return true;
}

} // namespace

std::int32_t MatrixIdOf(const field_info& field, std::int32_t record) {
    return field.matrixColumn != nullptr ? field.matrixColumn->GetValue(record) : MatrixTable::kNoId;
}

MatrixEntry* FindMatrixEntry(std::int32_t id) {
    MatrixEntry* const entry = MatrixTable::Instance().Find(id);
    return entry != nullptr && entry->IsMatrix() ? entry : nullptr;
}

MatrixCells* FindCells(const field_info& field, std::int32_t record) {
    MatrixEntry* const entry = FindMatrixEntry(MatrixIdOf(field, record));
    return entry != nullptr && entry->cells.IsMatrix() ? &entry->cells : nullptr;
}

bool HasMatrixOfSize(const field_info& field, std::int32_t record, std::uint32_t size) {
    const MatrixEntry* const entry = FindMatrixEntry(MatrixIdOf(field, record));
    return entry != nullptr && entry->size == size;
}

void EmptyMatrices(field_info& field) {
    if (field.matrixColumn == nullptr) {
        return;
    }
    const IColumn<std::int32_t>& identities = *field.matrixColumn;
    ForEachIdentity(identities, 0, Records(identities), [](std::int32_t id) {
        MatrixTable::Instance().SetSize(id, 0);
        return id >= 0;
    });
}

void ForgetHolders(const field_info& field) {
    const auto forget = [](std::int32_t id) {
        MatrixTable::Instance().NoteUnknownSharing(id);
        return true;
    };
    ForEachIdentity(*field.matrixColumn, 0, Records(*field.matrixColumn), forget);
    ForEachIdentity(*field.matrixColumn, kFirstScratchRecord, kScratchRecords, forget);
}

void FreeMatrices(formats_info& format) {
    for (const field_info& field : format.fields) {
        if (field.matrixColumn != nullptr) {
            ForEachIdentity(*field.matrixColumn, 0, Records(*field.matrixColumn), FreeIdentity);
        }
    }
}

void FreeOwnedMatrices(const IColumn<std::int32_t>& identities) {
    ForEachIdentity(identities, 0, Records(identities), ReleaseIdentity);
    ForEachIdentity(identities, kFirstScratchRecord, kScratchRecords, ReleaseIdentity);
}

} // namespace Kestrona::Data::MemoryResident
