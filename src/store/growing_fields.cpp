#include "store/growing_fields.h"

#include "store/class_test.h"
#include "store/dimensioned_fields.h"

#include <kestrona/classes.h>

#include <atomic>

namespace Kestrona::Data::MemoryResident {

namespace {

// Schemas of several stores may change on several threads, which must not cost a lock.
std::atomic<const IMemoryResidentData*> last_store = nullptr; // null: there is no answer
std::int32_t last_format = -1;
std::vector<TableColumn> last_fields;

std::vector<TableColumn> FindGrowingFields(IMemoryResidentData& store, std::int32_t grown) {
    std::vector<TableColumn> found;
    ForEachFollowingField(store, [&](std::int32_t format, std::int32_t field, const field_info& info) {
        const bool is_own_associate = format == grown && HasClass(info, Classes::kAssociate);
        if (IsDimensionedBy(info, grown) && !is_own_associate) {
            found.push_back({format, field});
        }
    });
    return found;
}

} // namespace

const std::vector<TableColumn>& GrowingFields(IMemoryResidentData& store, std::int32_t format) {
    if (last_store.load(std::memory_order_relaxed) != &store || last_format != format) {
        last_fields = FindGrowingFields(store, format);
        last_format = format;
        last_store.store(&store, std::memory_order_relaxed);
    }
    return last_fields;
}

void ForgetGrowingFields() {
    last_store.store(nullptr, std::memory_order_relaxed);
}

} // namespace Kestrona::Data::MemoryResident
