#pragma once

#include <kestrona/host_interfaces.h>
#include <kestrona/store.h>
#include <kestrona/types.h>

#include <cstdio>
#include <string>

namespace Kestrona::Configuration::Compiled {

// Reads what stands in a compiled configuration behind its version: configuration type, identity, flag word and
// definition. `CompilationState` tells which kind of file is expected. The layouts of versions before 14.3 are known.
// False after reporting.
[[nodiscard]] bool ReadFileBody(Data::MemoryResident::MemoryResidentData& store, std::FILE* file, bool wide,
                                Version version, const std::wstring& path, IOleServerManager* ole_servers);

} // namespace Kestrona::Configuration::Compiled
