// Implements: the members of a family of records.
#include "store/family.h"

#include <kestrona/classes.h>
#include <kestrona/record_search.h>

#include <memory>

namespace Kestrona::Data::MemoryResident {

RecordNumbers FamilyRecords(IMemoryResidentData& store, std::int32_t format, double key) {
    const std::int32_t parent = store.LookupKeyRecord(format, key);
    if (parent == -1) {
        return {};
    }
    RecordNumbers records{parent};
    const std::int32_t field = FindFirstColumnWithClassification(store, format, Classes::kFamily);
    if (field != -1) {
        store.AddIndexToColumn(format, field);
        const std::unique_ptr<FindResult> children(store.LookupRecords(format, field, key, FindOperator::Equal));
        records.insert(records.end(), children->begin(), children->end());
    }
    return records;
}

} // namespace Kestrona::Data::MemoryResident
