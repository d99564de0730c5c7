#pragma once

#include <cstdint>
#include <limits>

/// \file
/// The order of the elements of a two-dimensional matrix.

namespace Kestrona {

/// The element of row `x` of the X format and row `y` of the Y format, which has `y_count` rows: x * y_count + y. One
/// that no matrix can have comes out as the largest index, which reads 0.0 and is never written.
///
/// Requires: no argument negative.
[[nodiscard]] constexpr std::uint32_t MatrixIndex(std::int32_t x, std::int32_t y, std::int32_t y_count) {
    const std::int64_t index = std::int64_t{x} * y_count + y;
    constexpr std::int64_t kLargest = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(index < kLargest ? index : kLargest);
}

} // namespace Kestrona
