#pragma once

#include "lint/finding.h"

#include <string>

namespace Kestrona::Tool::Lint {

/// Reads a definition and looks for everything that is wrong or doubtful about it: all findings of the parser; when
/// those hold no error, the first failure of the resolution; and what the rules find. Prints nothing.
[[nodiscard]] Report CheckDefinition(const std::string& path);

} // namespace Kestrona::Tool::Lint
