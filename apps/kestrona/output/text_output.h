#pragma once

#include <string>
#include <string_view>

namespace Kestrona::Tool {

/// The name of a file to write that stands for stdout.
inline constexpr std::string_view kStdout = "-";

/// Writes a whole text to a file, or to stdout for the empty path and for `kStdout`. What cannot be written is told on
/// stderr. Returns an exit code.
int WriteText(std::string_view text, const std::string& path);

/// What a command gives that has written to stdout. Says on stderr that this failed, unless it was the reader of a pipe
/// who stopped.
int OutputCode(bool written);

} // namespace Kestrona::Tool
