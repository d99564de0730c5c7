#pragma once

#include "lint/finding.h"

#include <kestrona/host/definition.h>

#include <string>

namespace Kestrona::Tool::Lint {

/// What the parser says, as a finding.
[[nodiscard]] Finding FindingOf(const Host::Diagnostic& diagnostic);

/// Reads a definition and looks for everything that is wrong or doubtful about it: all findings of the parser; when
/// those hold no error, the first failure of the resolution; and what the rules find. Prints nothing.
[[nodiscard]] Report CheckDefinition(const std::string& path);

} // namespace Kestrona::Tool::Lint
