#include "file_handle.h"

#include <filesystem>
#include <system_error>

namespace Kestrona::Host {

FileHandle OpenRegularFile(const std::string& path) {
    std::error_code error;
    return FileHandle(std::filesystem::is_regular_file(path, error) ? std::fopen(path.c_str(), "rbe") : nullptr);
}

} // namespace Kestrona::Host
