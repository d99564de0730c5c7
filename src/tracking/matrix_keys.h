#pragma once

#include <kestrona/memory_resident_data.h>
#include <kestrona/tracking.h>

#include <cstdint>

// The fields whose values name an element of a matrix that is dimensioned by formats.
namespace Kestrona::Tracking {

// The key columns of a two-key reference, among the fields of the format that it refers to: both or none.
void FindKeysOfReference(Data::MemoryResident::IMemoryResidentData& store, TrackingStep& step);

// The X and Y field of a resolved path, among the fields of its start format: either, both or none.
void FindKeysOfTarget(Data::MemoryResident::IMemoryResidentData& store, TrackingPath& path, std::int32_t start);

} // namespace Kestrona::Tracking
