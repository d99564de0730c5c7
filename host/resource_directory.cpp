#include "temporary_file.h"

#include <kestrona/host/resource_directory.h>

#include <array>
#include <cstdio>
#include <utility>

namespace Kestrona::Host {

namespace {

bool Copy(std::FILE* from, std::FILE* to) {
    std::array<char, 65536> block{};
    for (;;) {
        const std::size_t count = std::fread(block.data(), 1, block.size(), from);
        if (count == 0) {
            return std::ferror(from) == 0;
        }
        if (std::fwrite(block.data(), 1, count, to) != count) {
            return false;
        }
    }
}

} // namespace

ResourceDirectory::ResourceDirectory(std::string folder) : folder_(std::move(folder)) {}

bool ResourceDirectory::ExtractConfiguration(std::int32_t resource, std::wstring& path) {
    if (folder_.empty()) {
        return false;
    }
    const std::string name = folder_ + "/" + std::to_string(resource) + ".cnf";
    const FileHandle from = OpenRegularFile(name);
    if (from == nullptr) {
        return false;
    }
    TemporaryFile to;
    return to.Stream() != nullptr && Copy(from.get(), to.Stream()) && to.Keep(path);
}

} // namespace Kestrona::Host
