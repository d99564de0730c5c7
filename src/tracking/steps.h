#pragma once

#include <kestrona/memory_resident_data.h>
#include <kestrona/tracking.h>
#include <kestrona/types.h>

#include <cstddef>
#include <cstdint>

// What the searches and the walk know of one field.
namespace Kestrona::Tracking {

inline constexpr const wchar_t* kUnresolved = L"Path has not been resolved";
inline constexpr std::int32_t kNone = -1;

bool IsFormat(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format);
bool IsField(Data::MemoryResident::IMemoryResidentData& store, TableColumn place);

// The step that reads a field, its flags computed, without keys of its own.
TrackingStep MakeStep(Data::MemoryResident::IMemoryResidentData& store, TableColumn place);

// Whether the values of a field may serve as a key of a matrix.
bool MayBeMatrixKey(Data::MemoryResident::IMemoryResidentData& store, TableColumn place);

// Whether the path has been resolved, to steps that it really holds.
inline bool IsResolved(const TrackingPath& path) {
    return path.field != kNone && path.depth > 0 && static_cast<std::size_t>(path.depth) <= path.steps.size();
}

} // namespace Kestrona::Tracking
