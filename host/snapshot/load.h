#pragma once

#include "snapshot/snapshot_file.h"

#include <kestrona/host_interfaces.h>

namespace Kestrona::Host::Snapshots {

// `LoadSnapshot` that shows its progress on `feedback`, which may be null.
[[nodiscard]] bool Load(const std::string& path, Data::MemoryResident::MemoryResidentData& store,
                        const std::wstring& dataset, IInformationFeedback* feedback, FileProblem& problem);

} // namespace Kestrona::Host::Snapshots
