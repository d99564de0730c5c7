#pragma once

#include "output/message.h"

#include <optional>
#include <string>
#include <string_view>

namespace Kestrona::Tool {

/// What is wrong where a file would have to be replaced.
[[nodiscard]] Problem FileInTheWay();

/// Writes a file that this user alone can read (mode 0600). It appears under its name whole or not at all. One that is
/// there stays as it is unless `replace` is set. Returns what is wrong, nothing for nothing.
[[nodiscard]] std::optional<Problem> WriteSecretFile(std::string_view content, const std::string& path, bool replace);

} // namespace Kestrona::Tool
