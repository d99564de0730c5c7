#pragma once

#include <kestrona/host/snapshot.h>

#include <string>

/// \file
/// Compressing whole files so that nothing gets lost.

namespace Kestrona::Host {

/// Writes the file `source` as a zlib stream to `target` (UTF-8 paths). The target is there whole or stays as it was.
/// False, and `problem`, when it failed. Requires: two different files.
[[nodiscard]] bool CompressFile(const std::string& source, const std::string& target, FileProblem& problem);

/// Writes what the zlib stream `source` holds to `target` likewise. A source that ends too early, or that goes on
/// behind the end of the stream, is refused.
[[nodiscard]] bool DecompressFile(const std::string& source, const std::string& target, FileProblem& problem);

} // namespace Kestrona::Host
