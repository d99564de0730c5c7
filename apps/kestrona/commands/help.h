#pragma once

namespace CLI {
class App;
}

namespace Kestrona::Tool {

/// Gives the help of the tool the meanings of the exit codes, and the help of each command its examples. To be called
/// when all commands are there.
void AddHelp(CLI::App& app);

} // namespace Kestrona::Tool
