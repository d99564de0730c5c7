#pragma once

#include <kestrona/store.h>

/// \file
/// Encrypted fields of records that come from a snapshot.

namespace Kestrona::Tool {

/// Looks whether the key opens what the store holds. A key that does not is told on stderr and gives `kExitKey`; texts
/// that are damaged give `kExitDamagedInput`. Without a key the texts become the placeholder, so that nothing shows
/// what is stored, calculated fields included. Requires: the key was set up before the store was loaded.
int OpenSavedSecrets(Data::MemoryResident::MemoryResidentData& store);

} // namespace Kestrona::Tool
