#pragma once

#include <kestrona/memory_resident_data.h>
#include <kestrona/tracking.h>

#include <cstdint>

// The walk along a path that every function of tracked_values.h is made of.
namespace Kestrona::Tracking {

// What a walk, or one step of it, has read.
struct Reading {
    double value = 0.0;
    bool failed = false;
};

// What names an element of a matrix: positions or keys.
struct MatrixKeys {
    double first = 0.0;
    double second = 0.0;
};

// Steps count from 1, the record that the walk starts from; the last one is the depth of the path.
struct Tracker {
    std::int32_t record = -1; // the record that the step reads, -1 where the walk does not get there
    std::int32_t step = 0;    // the step wanted
};

inline constexpr double kNothing = -1.0; // of a walk that reads no value, has no path or leaves a list

// `tracker` may be null. Without `want_value` the last step reads nothing and a walk to the end gives -1.0.
Reading Follow(Data::MemoryResident::IMemoryResidentData& store, const TrackingPath& path, std::int32_t record,
               MatrixKeys keys, Tracker* tracker, bool want_value);

} // namespace Kestrona::Tracking
