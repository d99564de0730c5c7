#pragma once

#include <string>
#include <string_view>

namespace Kestrona::Tool {

/// Writes a whole text to a file, or to stdout for the empty path and for "-". What cannot be written is told on
/// stderr. Returns an exit code.
int WriteText(std::string_view text, const std::string& path);

/// What a command gives that has written to stdout. Says on stderr that this failed, unless it was the reader of a pipe
/// who stopped.
int OutputCode(bool written);

} // namespace Kestrona::Tool
