// Implements: what a matrix field itself knows, and the way from a field and a record to an id.
#include "store/record_matrices.h"
#include "store/take_over.h"

#include <kestrona/matrices.h>

namespace {

using namespace Kestrona::Data::MemoryResident;

constexpr std::int32_t kNone = -1;

using LabelSlot = Kestrona::OwnedText field_info::*;

wchar_t* LabelOf(IMemoryResidentData& store, std::int32_t format, std::int32_t field, LabelSlot slot) {
    const field_info* const info = store.GetFieldInfo(format, field);
    return info != nullptr ? (info->*slot).get() : nullptr;
}

void SetLabel(IMemoryResidentData& store, std::int32_t format, std::int32_t field, LabelSlot slot, wchar_t* label) {
    field_info* const info = store.GetFieldInfo(format, field);
    TakeOver(info != nullptr ? &(info->*slot) : nullptr, label);
}

} // namespace

std::int32_t KSDLL_GetDbMatrix(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                               std::int32_t record) {
    const field_info* const info = store.GetFieldInfo(format, field);
    return info != nullptr ? MatrixIdOf(*info, record) : kNone;
}

std::int32_t KSDLL_GetDbMatrixField(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const field_info* const info = store.GetFieldInfo(format, field);
    return info != nullptr ? info->matrixField : kNone;
}

void KSDLL_SetDbMatrixField(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t value) {
    if (field_info* const info = store.GetFieldInfo(format, field)) {
        info->matrixField = value;
    }
}

wchar_t* KSDLL_GetMatrixXLabel(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return LabelOf(store, format, field, &field_info::matrixXLabel);
}

wchar_t* KSDLL_GetMatrixYLabel(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return LabelOf(store, format, field, &field_info::matrixYLabel);
}

void KSDLL_SetMatrixXLabel(IMemoryResidentData& store, std::int32_t format, std::int32_t field, wchar_t* label) {
    SetLabel(store, format, field, &field_info::matrixXLabel, label);
}

void KSDLL_SetMatrixYLabel(IMemoryResidentData& store, std::int32_t format, std::int32_t field, wchar_t* label) {
    SetLabel(store, format, field, &field_info::matrixYLabel, label);
}

std::int32_t KSDLL_LocateMatrixId(MemoryResidentData& store, std::int32_t format, std::int32_t field,
                                  std::int32_t other_format, std::int32_t record, std::int32_t other_field) {
    if (store.GetFieldInfo(format, field) == nullptr) {
        return kNone;
    }
    const std::int32_t found = store.LookupKeyRecord(other_format, store.GetDbValue(format, field, record));
    return found != kNone ? KSDLL_GetDbMatrix(store, other_format, other_field, found) : kNone;
}
