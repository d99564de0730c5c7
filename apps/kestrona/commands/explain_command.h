#pragma once

namespace CLI {
class App;
}

namespace Kestrona::Tool {

/// Adds `explain`, which tells about the codes of errors and warnings.
void AddExplainCommand(CLI::App& app, int& code);

} // namespace Kestrona::Tool
