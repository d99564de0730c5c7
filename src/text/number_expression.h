#pragma once

#include <cstdint>

namespace Kestrona::Text {

inline constexpr std::int32_t kTooManyDecimals = 11;

// The number of decimals that the value has, up to 10; more, and what is no finite number, count as kTooManyDecimals.
// A value within 1e-13 of one with fewer decimals counts as that one.
std::int32_t CountDecimals(double value);

} // namespace Kestrona::Text
