// Implements: timestamps, and asking for and forgetting what has changed.
#include "columns/matrix_cells.h"
#include "store/class_test.h"
#include "store/record_matrices.h"

#include <kestrona/classes.h>
#include <kestrona/matrices.h>
#include <kestrona/store.h>

namespace Kestrona::Data::MemoryResident {

namespace {

bool IsMatrix(const field_info& field) {
    return (field.type & TypeBit::kMatrix) != 0;
}

template <typename Column>
std::int32_t StateOf(Column* column, std::int32_t record) {
    return column != nullptr ? column->GetRecordState(record) : 0;
}

std::int32_t CellState(const field_info& field, std::int32_t record) {
    return HasClass(field, Classes::kFreeFormat) ? StateOf(field.stringColumn, record) : StateOf(field.column, record);
}

// The state of the record's matrix; `owner` is the field whose identity column leads there.
std::int32_t MatrixState(const field_info& owner, std::int32_t record) {
    return StateOf(FindCells(owner, record), record);
}

std::int32_t OwnState(const formats_info& format, std::int32_t record) {
    for (const field_info& field : format.fields) {
        const std::int32_t state = IsMatrix(field) ? MatrixState(field, record) : CellState(field, record);
        if (state != 0) {
            return state;
        }
    }
    return 0;
}

// The fields of a child decide which cells are asked; a matrix is looked up through the field of the same number in
// `format`, not through the child's.
std::int32_t ChildState(const formats_info& format, const formats_info& child, std::int32_t record) {
    for (std::size_t i = 0; i < child.fields.size(); ++i) {
        const field_info& field = child.fields[i];
        std::int32_t state = 0;
        if (!IsMatrix(field)) {
            state = CellState(field, record);
        } else if (i < format.fields.size()) {
            state = MatrixState(format.fields[i], record);
        }
        if (state != 0) {
            return state;
        }
    }
    return 0;
}

template <typename T>
void ResetCells(IColumn<T>* column) {
    if (column != nullptr) {
        column->ResetColoumnChanged();
    }
}

bool HasMarks(const formats_info& format) {
    return !format.changedRecords.IsEmpty() || !format.erasedKeys.empty();
}

} // namespace

std::int64_t MemoryResidentData::GetTimestamp(std::int32_t format) {
    const formats_info* const info = FindFormat(format);
    return info != nullptr ? info->timestamp : 0;
}

void MemoryResidentData::SuspendTimestampChangeTracking(std::int32_t format) {
    if (formats_info* const info = FindFormat(format)) {
        ++info->timestampSuspendCount;
    }
}

void MemoryResidentData::ResumeTimestampChangeTracking(std::int32_t format) {
    formats_info* const info = FindFormat(format);
    if (info == nullptr) {
        return;
    }
    if (info->timestampSuspendCount > 0) {
        --info->timestampSuspendCount;
    }
    if (info->timestampSuspendCount == 0) {
        ++info->timestamp;
    }
}

bool MemoryResidentData::GetDbChanged(std::int32_t format) {
    const formats_info* const info = FindFormat(format);
    return info != nullptr && (HasMarks(*info) || info->changed);
}

std::int32_t MemoryResidentData::GetRecordChanged(std::int32_t format, std::int32_t record) {
    const formats_info* const info = FindFormat(format);
    if (info == nullptr) {
        return 0;
    }
    const std::int32_t state = OwnState(*info, record);
    const formats_info* const root = FindFormat(GetAssociateTableNumber(format));
    if (state != 0 || root == nullptr) {
        return state;
    }
    for (const std::int32_t child : root->childTables) {
        const formats_info* const child_info = FindFormat(child);
        const std::int32_t child_state = child_info != nullptr ? ChildState(*info, *child_info, record) : 0;
        if (child_state != 0) {
            return child_state;
        }
    }
    return 0;
}

void MemoryResidentData::ResetColumnChanged(std::int32_t format, std::int32_t field) {
    const field_info* const info = FindField(format, field);
    if (info == nullptr) {
        return;
    }
    if (IsMatrix(*info)) {
        KSDLL_ResetMatrixChanged(*this, format, field);
    } else if (HasClass(*info, Classes::kFreeFormat)) {
        ResetCells(info->stringColumn);
    } else {
        ResetCells(info->column);
    }
}

void MemoryResidentData::ResetDbChanged(std::int32_t format) {
    formats_info* const info = FindFormat(format);
    if (info == nullptr) {
        return;
    }
    if (!HasMarks(*info)) {
        info->changed = false;
    }
    for (std::size_t field = 0; field < info->fields.size(); ++field) {
        ResetColumnChanged(format, static_cast<std::int32_t>(field));
    }
}

void MemoryResidentData::ResetDbChangedIncludeChildTables(std::int32_t format) {
    ResetDbChanged(format);
    if (const formats_info* const info = FindFormat(format)) {
        for (const std::int32_t child : info->childTables) {
            ResetDbChanged(child);
        }
    }
}

} // namespace Kestrona::Data::MemoryResident
