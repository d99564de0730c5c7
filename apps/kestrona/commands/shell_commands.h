#pragma once

namespace CLI {
class App;
}

namespace Kestrona::Tool {

/// Adds the commands that shells and packagers ask for, `completion` and `man`; the help does not list them. `code`
/// takes the exit code of the one that is run.
void AddShellCommands(CLI::App& app, int& code);

} // namespace Kestrona::Tool
