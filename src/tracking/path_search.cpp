#include "tracking/path_search.h"

#include "tracking/matrix_keys.h"
#include "tracking/steps.h"

#include <kestrona/classes.h>

#include <cassert>

namespace Kestrona::Tracking {

using Data::MemoryResident::IMemoryResidentData;

namespace {

constexpr std::int32_t kUnknown = -2;
// References that may stand one behind the other.
constexpr std::size_t kMaxReferences = 10;
static_assert(kMaxReferences < TrackingPath::kMaxSteps);

} // namespace

PathSearch::PathSearch(IMemoryResidentData& store, TrackingPath& path, bool follow_additional,
                       Conditions::ITrackingCondition& condition)
    : store_(store),
      path_(path),
      followAdditional_(follow_additional),
      condition_(condition),
      visited_(static_cast<std::size_t>(store.GetFormatCount())),
      targets_(visited_.size(), kUnknown) {}

bool PathSearch::Has(TableColumn place, Class c) {
    return store_.ClassDefined(place.format, place.field, c);
}

std::int32_t PathSearch::FindTarget(std::int32_t format) {
    if (!IsFormat(store_, format)) {
        return kNone;
    }
    std::int32_t& target = targets_[static_cast<std::size_t>(format)];
    if (target == kUnknown) {
        target = KSDLL_LocateLocalReference(store_, format, &condition_);
    }
    return target;
}

TrackingResult PathSearch::Forward(std::int32_t format, std::size_t depth) {
    assert(depth <= kMaxReferences);
    if (!IsFormat(store_, format)) {
        return TrackingResult::NotFound;
    }
    if (visited_[static_cast<std::size_t>(format)]) {
        return TrackingResult::Visited;
    }
    visited_[static_cast<std::size_t>(format)] = true;
    if (const std::int32_t target = FindTarget(format); target != kNone) {
        path_.steps[depth] = MakeStep(store_, {format, target});
        path_.depth = static_cast<std::int16_t>(depth + 1);
        path_.direct = depth == 0 && (path_.steps[depth].flags & StepFlag::kList) == 0 &&
                       (store_.GetDbType(format, target) & TypeBit::kMatrix) == 0;
        return TrackingResult::Found;
    }
    const std::int32_t fields = depth < kMaxReferences ? store_.GetDbFields(format) : 0;
    for (std::int32_t field = 0; field < fields; ++field) {
        if (MayDescend({format, field}) && Descend({format, field}, depth)) {
            return TrackingResult::Found;
        }
    }
    return TrackingResult::NotFound;
}

bool PathSearch::MayDescend(TableColumn place) {
    const std::int32_t table = store_.GetDbTable(place.format, place.field);
    if (Has(place, Classes::kDatabase)) {
        return !Has({table, store_.GetDbSource(place.format, place.field)}, Classes::kFamilyTarget) &&
               !Has(place, Classes::kUnchecked);
    }
    const bool is_additional =
        (Has(place, Classes::kList) && !Has(place, Classes::kDataList)) || Has(place, Classes::kAutoDimension);
    return followAdditional_ && is_additional && FindTarget(table) != kNone;
}

// MATRIX DEFAULT keeps a field where the format of an AUTO DIMENSION reference stands otherwise; such a field leads
// nowhere.
std::int32_t PathSearch::NextFormat(TableColumn place) {
    if (!Has(place, Classes::kAutoDimension)) {
        return store_.GetDbTable(place.format, place.field);
    }
    return Has(place, Classes::kMatrixDefault) ? kNone
                                               : store_.GetDbData(place.format, place.field, DataSlot::kMatrixFormat);
}

bool PathSearch::Descend(TableColumn place, std::size_t depth) {
    if (Forward(NextFormat(place), depth + 1) != TrackingResult::Found) {
        return false;
    }
    path_.steps[depth] = MakeStep(store_, place);
    FindKeysOfReference(store_, path_.steps[depth]);
    return true;
}

TrackingResult PathSearch::Reverse(std::int32_t format) {
    if (!IsFormat(store_, format)) {
        return TrackingResult::NotFound;
    }
    for (std::int32_t owner = 0; owner < store_.GetFormatCount(); ++owner) {
        const bool is_searched = store_.GetDbExtension(owner) == nullptr && FindTarget(owner) != kNone;
        if (is_searched && FindMatrixOver(format, owner)) {
            return TrackingResult::Found;
        }
    }
    return TrackingResult::NotFound;
}

bool PathSearch::FindMatrixOver(std::int32_t format, std::int32_t owner) {
    for (std::int32_t field = 0; field < store_.GetDbFields(owner); ++field) {
        const TableColumn place{owner, field};
        const bool is_matrix =
            (store_.GetDbType(owner, field) & TypeBit::kMatrix) != 0 && !Has(place, Classes::kUnchecked);
        if (!is_matrix && !Has(place, Classes::kReverseSearch)) {
            continue;
        }
        const TableColumn x{store_.GetDbTable(owner, field), store_.GetDbSource(owner, field)};
        const TableColumn y{store_.GetDbTableY(owner, field), store_.GetDbSourceY(owner, field)};
        const bool is_over_x = x.format == format && IsField(store_, x);
        const bool is_over_y = !Has(place, Classes::k3DMatrix) && y.format == format && IsField(store_, y);
        if (is_over_x || is_over_y) {
            path_.steps[0] = MakeStep(store_, is_over_x ? x : y);
            path_.steps[1] = MakeStep(store_, place);
            path_.listField = field;
            path_.depth = 2;
            return true;
        }
    }
    return false;
}

} // namespace Kestrona::Tracking
