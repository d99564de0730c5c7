#pragma once

namespace Kestrona::Configuration::Compiled {

// Tells a configuration of this program from that of another one.
inline constexpr const wchar_t* kIdentity = L"Kestrona Compiled Configuration";

} // namespace Kestrona::Configuration::Compiled
