#pragma once

#include <string>

namespace Kestrona::Host {

// The name of the user that the process runs for, as the user database tells it; else the user's number. Names from the
// environment are not asked: anyone can set them, and the name goes into audit lines.
[[nodiscard]] std::wstring UserName();

} // namespace Kestrona::Host
