// Implements: making, sizing and freeing matrices, and their elements.
#include "columns/matrix_table.h"
#include "store/class_test.h"
#include "store/matrix_factory.h"
#include "store/record_matrices.h"

#include <kestrona/classes.h>
#include <kestrona/matrices.h>

#include <algorithm>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr std::int32_t kFirstRecord = 0;
constexpr double kNoElement = 0.0;
constexpr double kNoKey = -1.0;

bool IsUsableId(std::int32_t id) {
    return id >= 0 && id < MatrixTable::kMaxIds;
}

bool HasCell(std::int32_t record) {
    return record >= 0 && record <= kLastScratchRecord;
}

// The id that the record has, or a new one. -1 when there is none to be had.
std::int32_t NeedId(IColumn<std::int32_t>& identities, std::int32_t record) {
    MatrixTable& table = MatrixTable::Instance();
    std::int32_t id = identities.GetValue(record);
    if (IsUsableId(id)) {
        table.NoteId(id);
        return id;
    }
    id = table.TakeId();
    if (id != MatrixTable::kNoId) {
        identities.SetValue(record, id);
    }
    return id;
}

std::int32_t ShareFirstMatrix(IColumn<std::int32_t>& identities, std::int32_t record) {
    const std::int32_t id = identities.GetValue(kFirstRecord);
    identities.SetValue(record, id);
    return id;
}

double ElementOf(const MatrixEntry* entry, std::int32_t record, std::uint32_t index) {
    if (entry == nullptr || index >= MatrixTable::kSizeLimit || (index > entry->size && !entry->isCalculated)) {
        return kNoElement;
    }
    return entry->column != nullptr ? entry->column->GetElement(record, index)
                                    : entry->cells.GetValue(static_cast<std::int32_t>(index));
}

// The matrix grows up to the element, which itself is not stored.
void GrowTo(std::int32_t id, MatrixEntry& entry, std::uint32_t index) {
    if (entry.cells.IsMatrix() && entry.cells.GetCurrentSize() < index) {
        entry.cells.Resize(index);
    }
    MatrixTable::Instance().SetSize(id, index);
}

} // namespace

} // namespace Kestrona::Data::MemoryResident

using namespace Kestrona;
using namespace Kestrona::Data::MemoryResident;

std::int32_t KSDLL_CreateMatrix(IMemoryResidentData& store, std::uint32_t size, std::int32_t format, std::int32_t field,
                                std::int32_t record) {
    const field_info* const info = store.GetFieldInfo(format, field);
    if (info == nullptr || info->matrixColumn == nullptr || !HasCell(record)) {
        return MatrixTable::kNoId;
    }
    if (HasClass(*info, Classes::kCommonMatrix) && record != kFirstRecord) {
        return ShareFirstMatrix(*info->matrixColumn, record);
    }
    const bool has_id = IsUsableId(info->matrixColumn->GetValue(record));
    const std::int32_t id = NeedId(*info->matrixColumn, record);
    if (id == MatrixTable::kNoId) {
        return id;
    }
    const std::uint32_t elements = size < MatrixTable::kSizeLimit ? size : 0;
    if (FindMatrixEntry(id) != nullptr) {
        KSDLL_ResizeMatrix(id, elements, format, field);
    } else {
        MatrixTable::Instance().Put(id, MakeMatrix(store, format, field, record, elements));
        if (has_id) {
            MatrixTable::Instance().NoteUnknownSharing(id);
        }
    }
    return id;
}

void KSDLL_ReserveMatrixIds(std::int32_t count) {
    if (count > 0) {
        MatrixTable::Instance().NoteId(std::min(count, MatrixTable::kMaxIds) - 1);
    }
}

void KSDLL_FreeMatrix(std::int32_t id) {
    MatrixTable::Instance().Free(id);
}

void KSDLL_FreeMatrices(IMemoryResidentData& store, std::int32_t format) {
    if (formats_info* const info = store.GetFormatInfo(format)) {
        FreeMatrices(*info);
    }
}

void KSDLL_FreeMatrixMemory() {
    MatrixTable::Instance().FreeColumns();
}

void KSDLL_ZeroMatrixSize(std::int32_t id) {
    MatrixTable::Instance().SetSize(id, 0);
}

void KSDLL_ResizeMatrix(std::int32_t id, std::uint32_t size, std::int32_t /*unused1*/, std::int32_t /*unused2*/) {
    MatrixEntry* const entry = FindMatrixEntry(id);
    if (entry != nullptr && size < MatrixTable::kSizeLimit) {
        if (entry->cells.IsMatrix()) {
            entry->cells.ReportResize(entry->size, size);
        }
        MatrixTable::Instance().SetSize(id, size);
    }
}

std::int32_t KSDLL_GetMatrixSize(std::int32_t id) {
    const MatrixEntry* const entry = MatrixTable::Instance().Find(id);
    return entry != nullptr ? static_cast<std::int32_t>(entry->size) : 0;
}

double KSDLL_GetMatrixValue(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record,
                            std::uint32_t index) {
    const field_info* const info = store.GetFieldInfo(format, field);
    return info != nullptr ? ElementOf(FindMatrixEntry(MatrixIdOf(*info, record)), record, index) : kNoElement;
}

double KSDLL_GetMatrixValueFromId(std::int32_t id, std::int32_t record, std::uint32_t index) {
    return ElementOf(FindMatrixEntry(id), record, index);
}

void KSDLL_SetMatrixValue(std::int32_t id, std::uint32_t index, double value) {
    MatrixEntry* const entry = FindMatrixEntry(id);
    if (entry == nullptr || index >= MatrixTable::kSizeLimit) {
        return;
    }
    if (index > entry->size) {
        GrowTo(id, *entry, index);
    } else if (entry->cells.IsMatrix()) {
        entry->cells.SetValue(static_cast<std::int32_t>(index), value);
    }
}

void KSDLL_DeleteMatrixRow(std::int32_t id, std::int32_t row) {
    MatrixEntry* const entry = FindMatrixEntry(id);
    if (entry != nullptr && row >= 0 && static_cast<std::uint32_t>(row) < entry->size) {
        if (entry->cells.IsMatrix()) {
            entry->cells.Erase(row, kNoKey);
        }
        MatrixTable::Instance().SetSize(id, entry->size - 1);
    }
}

std::int32_t GetTotalMatrixCount() {
    return MatrixTable::Instance().Capacity();
}
