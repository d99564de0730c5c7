#pragma once

#include <cstdint>
#include <cstdio>
#include <string_view>

// What can be told of a zlib stream from outside.

namespace Kestrona::Host::Snapshots {

// Whether a stream that needs no dictionary can begin like this.
[[nodiscard]] bool LooksLikeZlib(std::string_view bytes);

// The checksum of everything in the file, as it stands at the end of a stream.
[[nodiscard]] std::uint32_t Adler32(std::FILE* file);

// The checksum at the end of a file that holds a stream.
[[nodiscard]] std::uint32_t LastWord(std::FILE* file);

} // namespace Kestrona::Host::Snapshots
