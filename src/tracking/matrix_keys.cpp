#include "tracking/matrix_keys.h"

#include "tracking/steps.h"

#include <kestrona/classes.h>

namespace Kestrona::Tracking {

using Data::MemoryResident::IMemoryResidentData;

namespace {

bool IsTwoKeyReference(IMemoryResidentData& store, const TrackingStep& step) {
    const auto has = [&](Class c) {
        return store.ClassDefined(step.format, step.field, c);
    };
    return has(Classes::kAutoDimension) && has(Classes::kDatabase) && has(Classes::kTwoKeyTarget);
}

bool IsDimensioned(IMemoryResidentData& store, const TrackingStep& target) {
    return store.ClassDefined(target.format, target.field, Classes::kAutoDimension) ||
           store.ClassDefined(target.format, target.field, Classes::k3DMatrix);
}

bool RefersTo(IMemoryResidentData& store, TableColumn place, std::int32_t format) {
    return MayBeMatrixKey(store, place) && store.GetDbTable(place.format, place.field) == format;
}

// Whether a cell of the field holds keys of the format: the field refers to it, or to a field that does.
bool HoldsKeysOf(IMemoryResidentData& store, TableColumn place, std::int32_t format) {
    if (!IsFormat(store, format) || !MayBeMatrixKey(store, place)) {
        return false;
    }
    const TableColumn target{store.GetDbTable(place.format, place.field), store.GetDbSource(place.format, place.field)};
    return target.format == format || (store.ClassDefined(place.format, place.field, Classes::kDatabase) &&
                                       IsField(store, target) && RefersTo(store, target, format));
}

// The first field of `start` that holds keys of the format.
std::int32_t FindKeyField(IMemoryResidentData& store, std::int32_t start, std::int32_t format) {
    for (std::int32_t field = 0; field < store.GetDbFields(start); ++field) {
        if (HoldsKeysOf(store, {start, field}, format)) {
            return field;
        }
    }
    return kNone;
}

} // namespace

void FindKeysOfReference(IMemoryResidentData& store, TrackingStep& step) {
    if (!IsTwoKeyReference(store, step)) {
        return;
    }
    const std::int32_t format = store.GetDbTable(step.format, step.field);
    std::int32_t x = kNone;
    std::int32_t y = kNone;
    for (std::int32_t field = 0; field < store.GetDbFields(format) && (x == kNone || y == kNone); ++field) {
        if (!MayBeMatrixKey(store, {format, field})) {
            continue;
        }
        x = x == kNone && store.GetDbTable(format, field) == format ? field : x;
        y = y == kNone && store.GetDbTableY(format, field) == format ? field : y;
    }
    if (x != kNone && y != kNone) {
        step.xFound = true;
        step.yFound = true;
        step.xColumn = store.GetDbColumn(format, x);
        step.yColumn = store.GetDbColumn(format, y);
    }
}

void FindKeysOfTarget(IMemoryResidentData& store, TrackingPath& path, std::int32_t start) {
    const TrackingStep& target = GetTargetStep(path);
    if (!IsDimensioned(store, target)) {
        return;
    }
    path.xField = FindKeyField(store, start, store.GetDbTable(target.format, target.field));
    path.yField = FindKeyField(store, start, store.GetDbTableY(target.format, target.field));
    path.xColumn = store.GetDbColumn(start, path.xField);
    path.yColumn = store.GetDbColumn(start, path.yField);
}

} // namespace Kestrona::Tracking
