#pragma once

#include <kestrona/host_interfaces.h>
#include <kestrona/store.h>

#include <string>

// Reading and writing a whole compiled configuration file.
namespace Kestrona::Configuration {

// Fills the store from a compiled file and resolves it. False after reporting. The module has no reader yet: every file
// is reported as unreadable.
bool ReadCompiledConfiguration(Data::MemoryResident::MemoryResidentData& store, const std::wstring& path,
                               INativeConfigWrapper* native_config, IInformationFeedback* feedback,
                               IOleServerManager* ole_servers);

// Writes the store's definition to a compiled file. False after reporting. The module has no writer yet: the file is
// reported and not touched.
bool WriteCompiledConfiguration(Data::MemoryResident::MemoryResidentData& store, const std::wstring& path,
                                IOleServerManager* ole_servers);

} // namespace Kestrona::Configuration
