#pragma once

#include <kestrona/export.h>
#include <kestrona/memory_resident_data.h>
#include <kestrona/tracking.h>

#include <cstdint>

/// \file
/// Following a path for a record of its start format: the value, the record or the list entry at its end.
///
/// Each step looks up the key that the step before has read. A walk fails where a key has no record, a list ends before
/// the index, or the path is unresolved. Its value is then 0.0 for a lost record and -1.0 for the others, unless the
/// caller names another. A text field adds nothing to the walk: its value is the key of its record. A reverse path ends
/// with the value of its first step, and fails where that is no key of the other format.
///
/// A matrix needs indexes. They are keys where the matrix is dimensioned by formats (AUTO DIMENSION), and positions in
/// an AUTO LIST. Where they are not given they come from the path's X and Y field, and are 0 without both of these.
///
/// `failed`, where it is a pointer, may be null. A step costs a key lookup and a column read, plus the length of the
/// list where a list is searched; nothing is allocated.

namespace Kestrona::Tracking {

/// Returns the value at the end of the path.
KS_API double FollowDataPathForValue(Data::MemoryResident::IMemoryResidentData& store, const TrackingPath& path,
                                     std::int32_t record, bool* failed);
KS_API double FollowDataPathForValue(Data::MemoryResident::IMemoryResidentData& store, const TrackingPath& path,
                                     std::int32_t record);
/// Returns `default_value` when the walk fails; an unresolved path does not touch the store.
KS_API double FollowDataPathForValue(Data::MemoryResident::IMemoryResidentData& store, const TrackingPath& path,
                                     std::int32_t record, double default_value, bool* failed);
KS_API double FollowDataPathForValue(Data::MemoryResident::IMemoryResidentData& store, const TrackingPath& path,
                                     std::int32_t record, double default_value);
/// The same, for a matrix over one format in both dimensions: where X and Y field are one, the second key is that of
/// `index_record`.
KS_API double FollowDataPathForValue(Data::MemoryResident::IMemoryResidentData& store, const TrackingPath& path,
                                     std::int32_t record, std::int32_t index_record, double default_value);

/// `FollowDataPathForValue` without more.
KS_API double TrackForValue(Data::MemoryResident::IMemoryResidentData& store, const TrackingPath& path,
                            std::int32_t record);
/// Returns an entry of the list at the end of the path.
KS_API double TrackForListValue(Data::MemoryResident::IMemoryResidentData& store, const TrackingPath& path,
                                std::int32_t record, std::int32_t index);
/// Returns an element of the matrix at the end of the path.
KS_API double TrackForMatrixValue(Data::MemoryResident::IMemoryResidentData& store, const TrackingPath& path,
                                  std::int32_t record, std::int32_t first, std::int32_t second);
KS_API double FollowDataTrackForValueLegacy(Data::MemoryResident::IMemoryResidentData& store, const TrackingPath& path,
                                            std::int32_t record, bool* failed, std::int32_t first, std::int32_t second);
/// The same; `tracked` receives the record that the last step reads, -1 when the walk does not get there.
KS_API double FollowDataTrackForValueLegacy(Data::MemoryResident::IMemoryResidentData& store, const TrackingPath& path,
                                            std::int32_t record, bool* failed, std::int32_t first, std::int32_t second,
                                            std::int32_t* tracked);

/// Returns the record that the last step would read, -1 when the walk does not get there and for a reverse path. Reads
/// no value.
KS_API std::int32_t TrackForRecord(Data::MemoryResident::IMemoryResidentData& store, const TrackingPath& path,
                                   std::int32_t record, std::int32_t first, std::int32_t second);
KS_API std::int32_t TrackForRecord(Data::MemoryResident::IMemoryResidentData& store, const TrackingPath& path,
                                   std::int32_t record, std::int32_t first, std::int32_t second, bool* failed);

/// Stores a value in the target field of the record at the end of the path. Nothing when the walk does not get there;
/// throws the wide text "Path has not been resolved" (`const wchar_t*`).
KS_API void SetValue(Data::MemoryResident::IMemoryResidentData& store, const TrackingPath& path, std::int32_t record,
                     double value);

/// Returns the value at the end of the path as a colour (red in the lowest byte, then green and blue): of a field that
/// holds colours the value itself; else the value is an index, 1 to 24 into the palette and below -2 a colour of the
/// user, kept as -10 minus the colour. Any other index is white. `raw` receives the value without its fraction. Throws
/// the wide text "Path has not been resolved" (`const wchar_t*`).
KS_API std::uint32_t TrackForColor(Data::MemoryResident::IMemoryResidentData& store, const TrackingPath& path,
                                   std::int32_t record);
KS_API std::uint32_t TrackForColor(Data::MemoryResident::IMemoryResidentData& store, const TrackingPath& path,
                                   std::int32_t record, std::int32_t* raw);
/// The same for an entry of a list.
KS_API std::uint32_t TrackForListColor(Data::MemoryResident::IMemoryResidentData& store, const TrackingPath& path,
                                       std::int32_t record, std::int32_t index);

/// Searches the list field of a reverse path, in a record of the format that has the list. Returns the position of the
/// first equal entry plus 1, 0 for none; where the record has no list, 1 if the cell itself is equal. Returns -1 for a
/// path without a list field; throws the wide text "Path has not been resolved" (`const wchar_t*`).
KS_API std::int32_t KSDLL_IsItemInList(Data::MemoryResident::IMemoryResidentData& store, const TrackingPath& path,
                                       std::int32_t record, double value);

} // namespace Kestrona::Tracking

/// Reads the local field that LOCAL ASSIGNMENT on the owner field names, if that is one of `format`. Returns false, and
/// leaves `value` unchanged, otherwise.
KS_API bool GetLocalAssignment(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                               std::int32_t owner_format, std::int32_t owner_field, double* value, std::int32_t record);
/// Stores a value there, likewise.
KS_API bool SetLocalAssignment(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                               std::int32_t owner_format, std::int32_t owner_field, double value, std::int32_t record);
