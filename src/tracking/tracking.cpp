// Implements: the functions that resolve a path.
#include "tracking/matrix_keys.h"
#include "tracking/path_search.h"
#include "tracking/steps.h"

#include <kestrona/tracking.h>

#include <cassert>

namespace Kestrona::Tracking {

using Conditions::ITrackingCondition;
using Data::MemoryResident::IMemoryResidentData;

namespace {

constexpr const wchar_t* kUnexpectedResult = L"Unexpected TrackingResult";

bool IsFound(TrackingResult result) {
    switch (result) {
    case TrackingResult::Found:
        return true;
    case TrackingResult::NotFound:
        return false;
    case TrackingResult::Visited:
        break;
    }
    throw kUnexpectedResult;
}

} // namespace

std::int32_t KSDLL_LocateLocalReference(IMemoryResidentData& store, std::int32_t format,
                                        ITrackingCondition* condition) {
    assert(condition != nullptr);
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        if (condition->Test(store, format, field)) {
            return field;
        }
    }
    return kNone;
}

void KSDLL_LocateLocalReferenceAsDataPath(IMemoryResidentData& store, TrackingPath& path, std::int32_t format,
                                          ITrackingCondition* condition) {
    path = TrackingPath();
    path.field = KSDLL_LocateLocalReference(store, format, condition);
    if (path.field != kNone) {
        path.steps[0].format = format;
        path.steps[0].field = path.field;
        path.steps[0].column = store.GetDbColumn(format, path.field);
        path.depth = 1;
        path.direct = true;
    }
}

std::int32_t KSDLL_LocateDataTrack(IMemoryResidentData& store, TrackingPath& path, std::int32_t format,
                                   bool follow_additional, ITrackingCondition* condition) {
    assert(condition != nullptr);
    path = TrackingPath();
    PathSearch search(store, path, follow_additional, *condition);
    // The start format has not been entered before, so that both searches find a path or none.
    if (IsFound(search.Forward(format, 0)) || IsFound(search.Reverse(format))) {
        path.field = path.steps[0].field;
    }
    return path.field;
}

void setDataPath(IMemoryResidentData& store, TrackingPath& path, std::int32_t format, ITrackingCondition* condition) {
    if (KSDLL_LocateDataTrack(store, path, format, false, condition) != kNone) {
        FindKeysOfTarget(store, path, format);
    }
}

} // namespace Kestrona::Tracking
