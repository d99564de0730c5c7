#pragma once

#include <kestrona/host/default_host.h>

namespace Kestrona::Tool {

/// Has a host say what it finds in the form of the tool's own messages.
void TellThroughTool(Host::DefaultHostOptions& options);

} // namespace Kestrona::Tool
