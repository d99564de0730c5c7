// Implements: AddIndexToColumn, InvalidateIndexes, RebuildIndexes.
#include "store/class_test.h"
#include "store/column_ownership.h"

#include <kestrona/classes.h>
#include <kestrona/store.h>

namespace Kestrona::Data::MemoryResident {

namespace {

// Calls `action` with every value and string column of the format. A shared column may come up again, which neither
// marking it stale nor rebuilding it minds.
template <typename Action>
void ForEachColumn(formats_info* format, Action action) {
    if (format == nullptr) {
        return;
    }
    for (const field_info& field : format->fields) {
        if (field.column != nullptr) {
            action(*field.column);
        }
        if (field.stringColumn != nullptr) {
            action(*field.stringColumn);
        }
    }
}

} // namespace

void MemoryResidentData::InvalidateIndexes(std::int32_t format) {
    ForEachColumn(FindFormat(format), [](auto& column) { column.BeginBulkUpdate(); });
}

void MemoryResidentData::RebuildIndexes(std::int32_t format) {
    ForEachColumn(FindFormat(format), [](auto& column) { column.EndBulkUpdate(); });
}

void MemoryResidentData::AddIndexToColumn(std::int32_t format, std::int32_t field) {
    field_info* const info = FindField(format, field);
    if (info == nullptr || HasClass(*info, Classes::kEvaluate)) {
        return;
    }
    if ((info->type & TypeBit::kReference) != 0 && HasClass(*info, Classes::kFreeFormat)) {
        IndexColumn(*FindFormat(format), *info, &field_info::stringColumn);
    } else {
        IndexColumn(*FindFormat(format), *info, &field_info::column);
    }
}

} // namespace Kestrona::Data::MemoryResident
