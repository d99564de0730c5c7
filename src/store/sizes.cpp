// Implements: the record count and the sizes of the columns that follow it.
#include "store/class_test.h"
#include "store/record_matrices.h"

#include <kestrona/classes.h>
#include <kestrona/store.h>

#include <algorithm>

namespace Kestrona::Data::MemoryResident {

namespace {

std::int32_t ClampRecordCount(std::int64_t count) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(count, 0, kFirstScratchRecord));
}

// A field that borrows its value column leaves that to the owner. Its texts are always its own.
void ResizeField(field_info& field, std::uint32_t size) {
    if (field.column != nullptr && !HasClass(field, Classes::kAdditionalReference)) {
        field.column->Resize(size);
    }
    if (field.stringColumn != nullptr) {
        field.stringColumn->Resize(size);
    }
    if (size == 0 && (field.type & TypeBit::kMatrix) != 0) {
        EmptyMatrices(field);
    }
}

} // namespace

std::int32_t MemoryResidentData::GetCurrentDbSize(std::int32_t format) {
    const formats_info* const info = FindFormat(format);
    return info != nullptr ? info->recordCount : 0;
}

void MemoryResidentData::ResizeTable(std::int32_t format, std::int32_t size) {
    formats_info* const info = FindFormat(format);
    if (info == nullptr) {
        return;
    }
    for (field_info& field : info->fields) {
        ResizeField(field, static_cast<std::uint32_t>(ClampRecordCount(size)));
    }
}

void MemoryResidentData::SetCurrentDbSize(std::int32_t format, std::int32_t size) {
    if (formats_info* const info = FindFormat(format)) {
        ResizeTable(format, size);
        info->recordCount = ClampRecordCount(size);
    }
}

void MemoryResidentData::ChangeCurrentDbSize(std::int32_t format, std::int32_t delta) {
    SetCurrentDbSize(format, ClampRecordCount(std::int64_t{GetCurrentDbSize(format)} + delta));
}

} // namespace Kestrona::Data::MemoryResident
