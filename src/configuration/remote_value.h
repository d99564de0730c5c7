#pragma once

#include <cstdint>

namespace Kestrona::Configuration {

// The value by which a REMOTE classification stands for a field: -10000 or less, ten thousand fields a format.
constexpr double ConvertTableColumnIndexToRemoteValue(std::int32_t format, std::int32_t field) {
    return (static_cast<double>(format) + 1.0) * -10000.0 - static_cast<double>(field);
}

} // namespace Kestrona::Configuration
