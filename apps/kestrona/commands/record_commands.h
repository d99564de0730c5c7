#pragma once

namespace CLI {
class App;
}

namespace Kestrona::Tool {

/// Adds the commands that print records; `code` takes the exit code of the one that is run.
void AddRecordCommands(CLI::App& app, int& code);

} // namespace Kestrona::Tool
