#pragma once

#include "file_handle.h"

#include <kestrona/host/snapshot.h>

#include <cerrno>
#include <cstdint>
#include <string>
#include <string_view>

namespace Kestrona::Host::Snapshots {

// A failed operation, with the system's reason. 0 for a failure of which the system says nothing.
[[nodiscard]] FileProblem SystemProblem(FileFault fault, const std::string& path, int error = errno);

// `Host::OpenRegularFile` that tells `problem` why there is none.
[[nodiscard]] FileHandle OpenRegularFile(const std::string& path, FileProblem& problem);

// "1 byte", "2 bytes"
[[nodiscard]] std::string Bytes(std::int64_t count);

// Bytes of a file in quotation marks: letters and signs as they are, others as "\x1b".
[[nodiscard]] std::string QuotedBytes(std::string_view bytes);

} // namespace Kestrona::Host::Snapshots
