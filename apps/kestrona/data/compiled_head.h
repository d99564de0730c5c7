#pragma once

#include <kestrona/compiled_configuration.h>
#include <kestrona/host/snapshot.h>

#include <cstdint>
#include <optional>
#include <string>

/// \file
/// What stands before the definition in a compiled file.

namespace Kestrona::Tool {

struct CompiledHead {
    std::string banner; ///< Without line ends.
    std::int64_t version_at = 0;
    bool wide = false; ///< Texts are in 16-bit units.
    Configuration::Compiled::CompiledVersionInfo version;
    Configuration::Compiled::VersionCheckResult check = Configuration::Compiled::VersionCheckResult::NoVersion;
    std::int32_t type = 0; ///< `ConfigurationSourceType`.
    std::int64_t file_size = 0;
};

/// Reads it. Nothing, and `problem`, for a file that cannot be read or ends too early. A version that is not read is
/// none.
[[nodiscard]] std::optional<CompiledHead> ReadCompiledHead(const std::string& path, Host::FileProblem& problem);

/// Tells whether a file begins with a head of the version that is read; `problem` otherwise.
[[nodiscard]] bool CheckCompiledHead(const std::string& path, Host::FileProblem& problem);

} // namespace Kestrona::Tool
