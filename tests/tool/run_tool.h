#pragma once

#include <string>
#include <vector>

namespace Kestrona::Tool {

/// What one run of the tool gave.
struct ToolRun {
    int exit_code = -1;
    std::string out;
    std::string err;
};

/// Runs the built tool; `input` is its stdin. Expects a code of each error and warning on stderr, and hints.
ToolRun RunTool(const std::vector<std::string>& arguments, const std::string& input = {});

/// Makes a fresh folder below the tests' scratch folder.
std::string FreshFolder(const std::string& name);

/// Returns the bytes of a file, "" when it is not there.
std::string ReadFile(const std::string& path);

void WriteFile(const std::string& path, const std::string& content);

/// A path below the project's root.
std::string SourcePath(const std::string& relative);

} // namespace Kestrona::Tool
