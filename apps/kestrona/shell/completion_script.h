#pragma once

#include "shell/command_tree.h"

#include <string>

/// \file
/// Scripts that complete the commands, the options, the values of those with a choice, and files and folders.

namespace Kestrona::Tool {

[[nodiscard]] std::string BashScript(const CommandNode& tool);
[[nodiscard]] std::string ZshScript(const CommandNode& tool);
[[nodiscard]] std::string FishScript(const CommandNode& tool);

} // namespace Kestrona::Tool
