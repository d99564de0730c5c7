#pragma once

#include <cstdio>
#include <memory>

namespace Kestrona::Host {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using OpenFile = std::unique_ptr<std::FILE, CloseFile>;

} // namespace Kestrona::Host
