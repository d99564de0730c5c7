// Implements: cells of matrices as a dialog of the host shows them.
#include "store/class_test.h"
#include "store/record_matrices.h"

#include <kestrona/classes.h>
#include <kestrona/matrices.h>

MatrixDialogInfo matrixDialogInfo;

namespace {

using namespace Kestrona;
using namespace Kestrona::Data::MemoryResident;

constexpr std::int32_t kNoMatrix = -1;

// The matrix field, null for any other field.
const field_info* FindMatrixField(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const field_info* const info = store.GetFieldInfo(format, field);
    return info != nullptr && (info->type & TypeBit::kMatrix) != 0 ? info : nullptr;
}

// A list that runs beside another one lies along the Y axis of the dialog. -1 becomes an index that no matrix has.
std::uint32_t DialogIndex(const field_info& field) {
    return static_cast<std::uint32_t>(HasClass(field, Classes::kParallelList) ? matrixDialogInfo.yIndex
                                                                              : matrixDialogInfo.xIndex);
}

} // namespace

bool TreatMatrixAsDialog(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const field_info* const info = FindMatrixField(store, format, field);
    return info != nullptr && info->data[DataSlot::kAssociateField] != matrixDialogInfo.dialogField &&
           field != matrixDialogInfo.dialogField;
}

double GetReferencedValue(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record) {
    if (const field_info* const info = FindMatrixField(store, format, field)) {
        if (!matrixDialogInfo.active) {
            return store.GetDbDefaultValue(format, field);
        }
        if (MatrixIdOf(*info, record) != kNoMatrix) {
            return KSDLL_GetMatrixValue(store, format, field, record, DialogIndex(*info));
        }
    }
    return store.GetDbValue(format, field, record);
}

void SetReferencedValue(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record,
                        double value) {
    if (const field_info* const info = FindMatrixField(store, format, field)) {
        const std::int32_t id = MatrixIdOf(*info, record);
        if (matrixDialogInfo.active && id != kNoMatrix) {
            KSDLL_SetMatrixValue(id, DialogIndex(*info), value);
            return;
        }
    }
    store.SetDbValue(format, field, record, value);
}
