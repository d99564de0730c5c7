#pragma once

#include <string>

namespace Kestrona::Tool {

/// "peak memory 12.3 MB", of what this process has had in memory at once.
[[nodiscard]] std::string PeakMemoryText();

} // namespace Kestrona::Tool
