#pragma once

#include <cstdint>

namespace Kestrona::Platform {

// Milliseconds since the beginning of 1970 in UTC.
std::int64_t UtcMillisecondsNow();

// Milliseconds by which local time is ahead of UTC at this moment; 0 when the system cannot tell.
std::int64_t LocalOffsetMillisecondsNow();

} // namespace Kestrona::Platform
