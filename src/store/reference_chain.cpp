// Implements: ResolveReferenceChain.
#include "store/class_test.h"

#include <kestrona/classes.h>
#include <kestrona/record_search.h>

#include <boost/unordered/unordered_flat_set.hpp>

namespace {

using Kestrona::TableColumn;
using Kestrona::Data::MemoryResident::field_info;
using Kestrona::Data::MemoryResident::IMemoryResidentData;

// Chains of this many steps are followed without looking for a ring.
constexpr std::int32_t kUncheckedSteps = 32;

// The field that `place` refers to, `place` itself when it refers to none or to one that does not exist.
TableColumn Next(IMemoryResidentData& store, TableColumn place) {
    const field_info* const field = store.GetFieldInfo(place.format, place.field);
    if (field == nullptr || !HasClass(*field, Kestrona::Classes::kDatabase) ||
        store.GetFieldInfo(field->table, field->source) == nullptr) {
        return place;
    }
    return {field->table, field->source};
}

std::uint64_t Number(TableColumn place) {
    return (std::uint64_t{static_cast<std::uint32_t>(place.format)} << 32) | static_cast<std::uint32_t>(place.field);
}

TableColumn FollowLongChain(IMemoryResidentData& store, TableColumn place) {
    boost::unordered_flat_set<std::uint64_t> seen{Number(place)};
    for (TableColumn next = Next(store, place); seen.insert(Number(next)).second; next = Next(store, place)) {
        place = next;
    }
    return place;
}

} // namespace

void ResolveReferenceChain(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                           std::int32_t* out_format, std::int32_t* out_field) {
    const TableColumn start{format, field};
    TableColumn end = start;
    std::int32_t steps = 0;
    for (TableColumn next = Next(store, end); next != end && steps <= kUncheckedSteps; next = Next(store, end)) {
        end = next;
        ++steps;
    }
    if (steps > kUncheckedSteps) {
        end = FollowLongChain(store, start);
    }
    if (out_format != nullptr) {
        *out_format = end.format;
    }
    if (out_field != nullptr) {
        *out_field = end.field;
    }
}
