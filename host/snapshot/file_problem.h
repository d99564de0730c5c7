#pragma once

#include <kestrona/host/snapshot.h>

#include <cerrno>

namespace Kestrona::Host::Snapshots {

// A failed operation, with the system's reason. 0 for a failure of which the system says nothing.
[[nodiscard]] FileProblem SystemProblem(FileFault fault, const std::string& path, int error = errno);

[[nodiscard]] std::string Bytes(std::int64_t count);

} // namespace Kestrona::Host::Snapshots
