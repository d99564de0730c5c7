#pragma once

#include "encryption.h"

#include <kestrona/host/default_host.h>
#include <kestrona/store.h>

#include <cstddef>
#include <cstdint>
#include <string>

/// \file
/// One run of the tool over one definition.

namespace Kestrona::Tool {

/// Owns the host and the store that a command works on.
class Session {
public:
    Session();

    /// Loads a definition and prints its findings to stderr. Returns an exit code.
    int Load(const std::string& definition);
    /// Likewise, and sets the key of encrypted fields up before.
    int Load(const std::string& definition, const KeyOptions& key);

    /// Requires: `Load` gave `kExitGood`.
    [[nodiscard]] Data::MemoryResident::MemoryResidentData& Store();
    /// Returns the format with this name or display name; says on stderr what there is and gives -1 when none has it.
    [[nodiscard]] std::int32_t FindFormat(const std::string& name);
    /// Returns the field of the format with this name; says on stderr what there is and gives -1 when none has it.
    [[nodiscard]] std::int32_t FindField(std::int32_t format, const std::string& name);

private:
    Host::DefaultHost host_;
};

/// Peak resident memory of this process in bytes, 0 when it is not known.
[[nodiscard]] std::size_t PeakMemory();

} // namespace Kestrona::Tool
