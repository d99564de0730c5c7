#include "memory_file.h"
#include "persistence/snapshot_walk.h"

#include <kestrona/unicode.h>

#include <cstdint>

// The extraction reader of snapshots: any bytes as a file, and every operation on it.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Kestrona::Fuzz::MemoryFile file;
    file.Replace(data, size);
    const auto store = Kestrona::Data::MemoryResident::CreateMemoryResidentData();
    Kestrona::Testing::WalkSnapshot(*store, Kestrona::FromUtf8(file.Path()));
    return 0;
}
