#include "platform/file_reading.h"

#include <algorithm>

namespace Kestrona::Platform {

namespace {

// Bytes read in one step; storage grows by as much at most.
constexpr std::size_t kChunk = std::size_t{1} << 18;

} // namespace

std::size_t BytesLeft(std::FILE* file) {
    const long here = std::ftell(file);
    if (here < 0 || std::feof(file) != 0 || std::fseek(file, 0, SEEK_END) != 0) {
        return 0;
    }
    const long end = std::ftell(file);
    std::fseek(file, here, SEEK_SET);
    return end > here ? static_cast<std::size_t>(end - here) : 0;
}

std::size_t BytesOf(std::FILE* file) {
    return static_cast<std::size_t>(std::max(std::ftell(file), 0L)) + BytesLeft(file);
}

bool ReadBytes(std::FILE* file, std::size_t count, std::string& bytes) {
    bytes.clear();
    while (bytes.size() < count) {
        const std::size_t before = bytes.size();
        const std::size_t wanted = std::min(count - before, kChunk);
        bytes.resize(before + wanted);
        const std::size_t got = std::fread(bytes.data() + before, 1, wanted, file);
        if (got < wanted) {
            bytes.resize(before + got);
            return false;
        }
    }
    return true;
}

} // namespace Kestrona::Platform
