#pragma once

#include <cstdio>
#include <memory>
#include <string>

namespace Kestrona::Host {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// Closes at its end and drops the result of closing; whoever writes must flush and test before.
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

// Opens a file (UTF-8 path) for reading in binary. Null for what cannot be opened and for what is no regular file: a
// pipe would keep the reader waiting.
[[nodiscard]] FileHandle OpenRegularFile(const std::string& path);

// A path to the very file that is open, for those who open by name: another file may have taken the name meanwhile. The
// name itself where the system shows no open files.
[[nodiscard]] std::string PathOfOpenFile(std::FILE* file, const std::string& path);

} // namespace Kestrona::Host
