#pragma once

namespace CLI {
class App;
}

namespace Kestrona::Tool {

/// Adds the commands that look at definitions; `code` takes the exit code of the one that is run.
void AddDefinitionCommands(CLI::App& app, int& code);

} // namespace Kestrona::Tool
