#include "file_handle.h"

#include <filesystem>
#include <system_error>

namespace Kestrona::Host {

FileHandle OpenRegularFile(const std::string& path) {
    std::error_code error;
    return FileHandle(std::filesystem::is_regular_file(path, error) ? std::fopen(path.c_str(), "rbe") : nullptr);
}

std::string PathOfOpenFile(std::FILE* file, const std::string& path) {
    std::string descriptor = "/proc/self/fd/" + std::to_string(fileno(file));
    std::error_code error;
    return std::filesystem::exists(descriptor, error) ? descriptor : path;
}

} // namespace Kestrona::Host
