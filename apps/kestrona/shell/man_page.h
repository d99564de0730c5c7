#pragma once

#include "shell/command_tree.h"

namespace Kestrona::Tool {

/// The manual page of the tool with all of its commands, as source of the man macros.
[[nodiscard]] std::string ManPage(const CommandNode& tool);

} // namespace Kestrona::Tool
