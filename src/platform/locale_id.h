#pragma once

#include <cstdint>

namespace Kestrona::Platform {

// The locale identity that stands for no locale at all, as "C" and "POSIX" do.
inline constexpr std::uint32_t kInvariantLocale = 0x007f;

} // namespace Kestrona::Platform
