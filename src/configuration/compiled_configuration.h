#pragma once

#include <kestrona/host_interfaces.h>
#include <kestrona/store.h>

#include <string>

// Reading and writing a whole compiled configuration file.
namespace Kestrona::Configuration {

// Fills the store from a compiled file and resolves it; `native_config` hears where it came from. False after
// reporting.
bool ReadCompiledConfiguration(Data::MemoryResident::MemoryResidentData& store, const std::wstring& path,
                               INativeConfigWrapper* native_config, IInformationFeedback* feedback,
                               IOleServerManager* ole_servers);

// Writes the store's definition to a compiled file. False after reporting; a file of this name is then as it was.
// Throws the wide text "Unexpected state" (`const wchar_t*`), and touches no file, when the compile type has none.
bool WriteCompiledConfiguration(Data::MemoryResident::MemoryResidentData& store, const std::wstring& path,
                                IOleServerManager* ole_servers);

} // namespace Kestrona::Configuration
