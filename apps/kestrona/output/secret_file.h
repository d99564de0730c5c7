#pragma once

#include <string>
#include <string_view>

namespace Kestrona::Tool {

inline constexpr const char* kFileInTheWay = "is there already; --force replaces it";

/// Writes a file that this user alone can read (mode 0600). It appears under its name whole or not at all. One that is
/// there stays as it is unless `replace` is set. Returns what is wrong, "" for nothing.
[[nodiscard]] std::string WriteSecretFile(std::string_view content, const std::string& path, bool replace);

} // namespace Kestrona::Tool
