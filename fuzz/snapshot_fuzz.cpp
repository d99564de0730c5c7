#include "persistence/snapshot_walk.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

// The reader of snapshots: any bytes as a file, and every operation on it.

namespace {

// A file in memory that has a path.
class MemoryFile {
public:
    MemoryFile() : number_(memfd_create("snapshot", 0)), path_(L"/proc/self/fd/" + std::to_wstring(number_)) {}

    bool Replace(const std::uint8_t* data, std::size_t size) const {
        return ftruncate(number_, 0) == 0 && pwrite(number_, data, size, 0) == static_cast<ssize_t>(size);
    }

    const std::wstring& Path() const { return path_; }

private:
    int number_;
    std::wstring path_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const MemoryFile file;
    if (!file.Replace(data, size)) {
        std::abort();
    }
    const auto store = Kestrona::Data::MemoryResident::CreateMemoryResidentData();
    Kestrona::Testing::WalkSnapshot(*store, file.Path());
    return 0;
}
