#pragma once

#include "output/message.h"

#include <string>
#include <vector>

namespace Kestrona::Tool {

/// "There are A, B, C.", and how many more of a long list; empty for no names.
[[nodiscard]] Hint ThereAre(const std::vector<std::string>& names);

} // namespace Kestrona::Tool
