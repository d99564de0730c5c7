#pragma once

#include <kestrona/host_interfaces.h>
#include <kestrona/store.h>

namespace Kestrona::Host {

// Marks the fields whose default is given by its text. `KSSERVER_LoadTableDefinition` does so after the resolution;
// loads that do without it must do it themselves.
void MarkStringDefaults(Data::MemoryResident::MemoryResidentData& store);

// Resolves a definition that was read from a stream and makes its columns. False after the data module has reported.
[[nodiscard]] bool ResolveRead(Data::MemoryResident::MemoryResidentData& store, IInformationFeedback* feedback);

} // namespace Kestrona::Host
