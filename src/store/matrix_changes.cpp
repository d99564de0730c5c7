// Implements: asking for and forgetting the changes of matrices.
#include "columns/matrix_cells.h"
#include "store/record_matrices.h"

#include <kestrona/matrices.h>

using namespace Kestrona::Data::MemoryResident;

bool KSDLL_GetMatrixChanged(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const field_info* const info = store.GetFieldInfo(format, field);
    if (info == nullptr || info->matrixColumn == nullptr) {
        return false;
    }
    const std::int32_t records = store.GetCurrentDbSize(format);
    for (std::int32_t record = 0; record < records; ++record) {
        MatrixCells* const matrix = FindCells(*info, record);
        if (matrix != nullptr && matrix->HasColumnChanged()) {
            return true;
        }
    }
    return records == 0;
}

std::int32_t KSDLL_GetMatrixRecordState(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                        std::int32_t record) {
    const field_info* const info = store.GetFieldInfo(format, field);
    MatrixCells* const matrix = info != nullptr ? FindCells(*info, record) : nullptr;
    return matrix != nullptr ? matrix->GetRecordState(record) : 0;
}

void KSDLL_ResetMatrixChanged(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const field_info* const info = store.GetFieldInfo(format, field);
    if (info == nullptr || info->matrixColumn == nullptr) {
        return;
    }
    const std::int32_t records = store.GetCurrentDbSize(format);
    if (records == 0) {
        info->matrixColumn->ResetColoumnChanged();
    }
    for (std::int32_t record = 0; record < records; ++record) {
        if (MatrixCells* const matrix = FindCells(*info, record)) {
            matrix->ResetColoumnChanged();
        }
    }
}
