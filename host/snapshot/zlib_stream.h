#pragma once

#include <kestrona/host/snapshot.h>

#include <cstdio>
#include <string>
#include <string_view>

// What can be told of a zlib stream from outside.

namespace Kestrona::Host::Snapshots {

// Whether a stream that needs no dictionary can begin like this.
[[nodiscard]] bool LooksLikeZlib(std::string_view bytes);

// Whether a file ends where the stream in it ends, whose content is given. One that is cut short decompresses without
// complaint, as far as it goes, and what stands behind a stream is not looked at. False, and `problem`, else; `path` is
// that of the file.
[[nodiscard]] bool CheckStreamEnd(std::FILE* file, const std::string& path, std::FILE* content, FileProblem& problem);

} // namespace Kestrona::Host::Snapshots
