#include "temporary_file.h"

#include <kestrona/unicode.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace Kestrona::Host {

TemporaryFile::TemporaryFile() {
    std::error_code error;
    // cppcheck-suppress useInitializationList ; the error code must be there first
    path_ = (std::filesystem::temp_directory_path(error) / "kestrona-XXXXXX").string();
    const int descriptor = error ? -1 : mkostemp(path_.data(), O_CLOEXEC);
    is_there_ = descriptor >= 0;
    if (is_there_) {
        file_.reset(fdopen(descriptor, "wb"));
        if (file_ == nullptr) {
            close(descriptor);
        }
    }
}

TemporaryFile::~TemporaryFile() {
    if (is_there_) {
        std::remove(path_.c_str());
    }
}

bool TemporaryFile::Keep(std::wstring& path) {
    if (!IsValidUtf8(path_) || std::fclose(file_.release()) != 0) {
        return false;
    }
    path = FromUtf8(path_);
    is_there_ = false;
    return true;
}

} // namespace Kestrona::Host
