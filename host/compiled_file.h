#pragma once

#include <kestrona/compilation_state.h>
#include <kestrona/host/native_config.h>
#include <kestrona/host/snapshot.h>
#include <kestrona/host_interfaces.h>
#include <kestrona/store.h>

#include <string>

namespace Kestrona::Host {

// What the file says of its own kind; `None` where it says nothing that is known.
[[nodiscard]] Configuration::Compiled::ConfigurationSourceType SourceTypeOf(const std::string& path);

// Fills a store from a compiled file and resolves it, without the once-a-process entry. What is wrong has been
// reported; `problem` tells it where the file is at fault and not the definition in it. `feedback` may be null.
[[nodiscard]] LoadOutcome FillFromCompiled(const std::string& path, Data::MemoryResident::MemoryResidentData& store,
                                           IInformationFeedback* feedback, IOleServerManager& ole_servers,
                                           FileProblem& problem);

} // namespace Kestrona::Host
