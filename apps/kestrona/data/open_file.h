#pragma once

#include <cstdio>
#include <memory>

namespace Kestrona::Tool {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// A stream that is read, null where it could not be opened.
using OpenFile = std::unique_ptr<std::FILE, FileCloser>;

} // namespace Kestrona::Tool
