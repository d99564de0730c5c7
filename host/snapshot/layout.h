#pragma once

#include <kestrona/data_extraction.h>

#include <bit>
#include <cstdint>
#include <string_view>

// The bytes of a snapshot. All numbers are little-endian; a text is an int32 count of UTF-16 units and the units.
//
//     0  the marker            26  stamp, int64            54  matrix count, int32
//    22  layout, int32         34  version, 4 int32        58  size of the definition, int32
//                              50  table count, int32      62  the definition, a table definition stream
//
// Behind the definition stands the directory, the offset of each block as int32, and then the blocks: the format's
// name, an int32 count of fields, a byte that tells whether the name of a dataset follows, perhaps that name, and the
// table data.

namespace Kestrona::Host::Snapshots {

static_assert(std::endian::native == std::endian::little, "numbers are written as they lie in memory");

inline constexpr std::string_view kMarker = DataExtraction::kSnapshotMarker;
inline constexpr std::int32_t kLayout = 1;
inline constexpr std::int64_t kLayoutAt = 22;
inline constexpr std::int64_t kVersionAt = 34;
inline constexpr std::int64_t kTableCountAt = 50;
inline constexpr std::int64_t kMatrixCountAt = 54;
inline constexpr std::int64_t kDefinitionSizeAt = 58;
inline constexpr std::int64_t kHeaderSize = 62;
inline constexpr std::int64_t kOffsetSize = 4;
// The largest offset, and with it the largest size of a snapshot.
inline constexpr std::int64_t kMaxSize = 0x7FFFFFFF;

} // namespace Kestrona::Host::Snapshots
