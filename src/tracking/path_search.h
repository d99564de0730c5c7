#pragma once

#include <kestrona/memory_resident_data.h>
#include <kestrona/tracking.h>
#include <kestrona/types.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Kestrona::Tracking {

// What became of the search of one format.
enum class TrackingResult : std::int32_t {
    Visited = 0, // by another branch
    NotFound = 1,
    Found = 2
};

// One search for a path from a format. Only the schema is read.
//
// A found path stands in `path` but for its `field`, which the caller sets. Each format is entered and each field put
// to the test once at most, so that a search is linear in the size of the schema.
class PathSearch {
public:
    PathSearch(Data::MemoryResident::IMemoryResidentData& store, TrackingPath& path, bool follow_additional,
               Conditions::ITrackingCondition& condition);

    // The search along references. `depth` is the number of references that led to the format.
    TrackingResult Forward(std::int32_t format, std::size_t depth);
    // The search for a format that has a target and a matrix over this one.
    TrackingResult Reverse(std::int32_t format);

private:
    std::int32_t FindTarget(std::int32_t format);
    [[nodiscard]] bool MayDescend(TableColumn place);
    [[nodiscard]] std::int32_t NextFormat(TableColumn place);
    bool Descend(TableColumn place, std::size_t depth);
    bool FindMatrixOver(std::int32_t format, std::int32_t owner);
    bool Has(TableColumn place, Class c);

    Data::MemoryResident::IMemoryResidentData& store_;
    TrackingPath& path_;
    bool followAdditional_;
    Conditions::ITrackingCondition& condition_;
    std::vector<bool> visited_;
    std::vector<std::int32_t> targets_; // by format, as far as asked for
};

} // namespace Kestrona::Tracking
