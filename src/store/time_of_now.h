#pragma once

namespace Kestrona::Data::MemoryResident {

// The local time as an OLE automation date. The host may have fixed it, or shifted it by days, through the save
// variables.
double TimeOfNow();

} // namespace Kestrona::Data::MemoryResident
