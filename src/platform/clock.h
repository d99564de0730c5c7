#pragma once

#include <cstdint>

namespace Kestrona::Platform {

// Milliseconds since the beginning of 1970 in UTC.
std::int64_t UtcMillisecondsNow();

// What local time is ahead of UTC at this moment.
std::int64_t LocalOffsetMillisecondsNow();

} // namespace Kestrona::Platform
