#pragma once

#include <kestrona/host/snapshot.h>

#include <cstdio>
#include <string>
#include <string_view>

// What can be told of a zlib stream from outside.

namespace Kestrona::Host::Snapshots {

// Whether a stream that needs no dictionary can begin like this.
[[nodiscard]] bool LooksLikeZlib(std::string_view bytes);

// Whether a file ends where the zlib stream in it ends; `content` is what the stream decompresses to, `path` that of
// the file. Decompressing itself tells neither: a stream that is cut short gives what it holds without complaint, and
// what stands behind a stream is not looked at. False, and `problem`, otherwise.
[[nodiscard]] bool CheckStreamEnd(std::FILE* file, const std::string& path, std::FILE* content, FileProblem& problem);

} // namespace Kestrona::Host::Snapshots
