#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <string>

namespace Kestrona::Fuzz {

// A file in memory that has a path.
class MemoryFile {
public:
    MemoryFile() : number_(memfd_create("input", 0)), path_("/proc/self/fd/" + std::to_string(number_)) {}

    void Replace(const void* data, std::size_t size) const {
        if (ftruncate(number_, 0) != 0 || pwrite(number_, data, size, 0) != static_cast<ssize_t>(size)) {
            std::abort();
        }
    }

    const std::string& Path() const { return path_; }

private:
    int number_;
    std::string path_;
};

} // namespace Kestrona::Fuzz
