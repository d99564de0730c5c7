#pragma once

#include <string>

namespace Kestrona::Tool {

/// Makes a fresh folder below the tests' scratch folder.
std::string FreshFolder(const std::string& name);

/// Returns the bytes of a file, "" when it is not there.
std::string ReadFile(const std::string& path);

void WriteFile(const std::string& path, const std::string& content);

} // namespace Kestrona::Tool
