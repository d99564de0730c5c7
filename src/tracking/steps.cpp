#include "tracking/steps.h"

#include <kestrona/classes.h>

#include <cstddef>

namespace Kestrona::Tracking {

using Data::MemoryResident::IMemoryResidentData;

namespace {

struct ClassFlag {
    std::uint32_t flag;
    Class c;
};

constexpr ClassFlag kClassFlags[] = {
    {StepFlag::kRelatedList, Classes::kRelatedList}, {StepFlag::kKeepKeys, Classes::kKeepKeys},
    {StepFlag::kTwoKeys, Classes::kAutoDimension},   {StepFlag::k3DMatrix, Classes::k3DMatrix},
    {StepFlag::kText, Classes::kFreeFormat},         {StepFlag::kParallelList, Classes::kParallelList},
};

std::uint32_t FlagsOf(IMemoryResidentData& store, TableColumn place) {
    const bool is_list = store.ClassDefined(place.format, place.field, Classes::kList) &&
                         store.GetDbTableY(place.format, place.field) != kNone;
    std::uint32_t flags = is_list ? StepFlag::kList : 0;
    for (const ClassFlag& known : kClassFlags) {
        if (store.ClassDefined(place.format, place.field, known.c)) {
            flags |= known.flag;
        }
    }
    return flags;
}

} // namespace

bool IsFormat(IMemoryResidentData& store, std::int32_t format) {
    return format >= 0 && format < store.GetFormatCount();
}

bool IsField(IMemoryResidentData& store, TableColumn place) {
    return IsFormat(store, place.format) && store.GetFieldInfo(place.format, place.field) != nullptr;
}

TrackingStep MakeStep(IMemoryResidentData& store, TableColumn place) {
    TrackingStep step;
    step.flags = FlagsOf(store, place);
    step.format = place.format;
    step.field = place.field;
    step.column = store.GetDbColumn(place.format, place.field);
    return step;
}

bool MayBeMatrixKey(IMemoryResidentData& store, TableColumn place) {
    const auto has = [&store, place](Class c) {
        return store.ClassDefined(place.format, place.field, c);
    };
    return !(has(Classes::kUpdateReference) && !has(Classes::kFreeFormat)) && !has(Classes::kFamily) &&
           !has(Classes::kUnchecked);
}

const TrackingStep& GetTargetStep(const TrackingPath& path) {
    if (!IsResolved(path)) {
        throw kUnresolved;
    }
    return path.steps[static_cast<std::size_t>(path.depth) - 1];
}

} // namespace Kestrona::Tracking
