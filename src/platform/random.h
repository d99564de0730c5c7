#pragma once

#include <span>

namespace Kestrona::Platform {

// Fills `bytes` from the cryptographic generator. False when the generator fails; the bytes are then not to be used.
[[nodiscard]] bool RandomBytes(std::span<unsigned char> bytes);

} // namespace Kestrona::Platform
