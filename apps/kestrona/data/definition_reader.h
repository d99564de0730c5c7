#pragma once

#include <kestrona/host/definition.h>

#include <optional>
#include <string>

namespace Kestrona::Tool {

/// The name of a definition that is read from stdin; what it includes is looked for in the current folder.
inline constexpr const char* kStdin = "-";

/// Reads the file, or stdin where the name is `kStdin` and `is_command_line` tells that no include gave it. What stdin
/// has held can be read again.
[[nodiscard]] std::optional<std::string> ReadDefinition(const std::string& path, bool is_command_line);

} // namespace Kestrona::Tool
