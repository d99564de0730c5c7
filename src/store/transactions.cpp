// Implements: StartRecordStateTransaction, EndRecordStateTransaction, RevertRecordState.
#include "columns/matrix_cells.h"
#include "store/class_test.h"
#include "store/record_matrices.h"
#include "store/transaction_id.h"

#include <kestrona/classes.h>
#include <kestrona/store.h>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr std::int32_t kNoRecord = -1;

// Calls `action` with the one column of each field that keeps its changes. Calculated fields have none, and matrices
// take part only where a record is named.
template <typename Action>
void ForEachTrackingColumn(const formats_info& format, std::int32_t matrix_record, Action action) {
    for (const field_info& field : format.fields) {
        if (HasClass(field, Classes::kEvaluate)) {
            continue;
        }
        if (field.column != nullptr && !field.column->IsNullColumn()) {
            action(*field.column);
        } else if (field.stringColumn != nullptr && !field.stringColumn->IsNullColumn()) {
            action(*field.stringColumn);
        } else if (matrix_record != kNoRecord && (field.type & TypeBit::kMatrix) != 0) {
            if (MatrixCells* const matrix = FindCells(field, matrix_record)) {
                action(*matrix);
            }
        }
    }
}

} // namespace

std::string MemoryResidentData::StartRecordStateTransaction(std::int32_t format, std::int32_t matrix_record) {
    std::string id = NewTransactionId();
    if (const formats_info* const info = FindFormat(format)) {
        ForEachTrackingColumn(*info, matrix_record, [&](auto& column) { column.StartTransaction(id); });
    }
    return id;
}

void MemoryResidentData::EndRecordStateTransaction(std::int32_t format, std::string id, std::int32_t matrix_record) {
    if (const formats_info* const info = FindFormat(format)) {
        ForEachTrackingColumn(*info, matrix_record, [&](auto& column) { column.EndTransaction(id); });
    }
}

void MemoryResidentData::RevertRecordState(std::int32_t format, std::string id, std::int32_t matrix_record) {
    if (const formats_info* const info = FindFormat(format)) {
        ForEachTrackingColumn(*info, matrix_record, [&](auto& column) { column.RevertTransaction(id); });
    }
}

} // namespace Kestrona::Data::MemoryResident
