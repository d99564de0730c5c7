#pragma once

namespace Kestrona {

// Frees the logger, the progress object and the message service. The next use of each makes the do-nothing default.
void FreeProcessServices();

} // namespace Kestrona
