#pragma once

#include "file_handle.h"

#include <string>

// Files that are needed for a while.

namespace Kestrona::Host {

// A new file in the folder for temporary files, that only this user can read. Removed by the destructor unless it is
// kept.
class TemporaryFile {
public:
    TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    // Open for writing in binary; null when it could not be made, and `errno` tells why.
    [[nodiscard]] std::FILE* Stream() const { return file_.get(); }

    [[nodiscard]] const std::string& Path() const { return path_; }

    // Writes everything out and leaves the file in place. The path must not change on its way through wide text.
    bool Keep(std::wstring& path);

private:
    std::string path_;
    FileHandle file_;
    bool is_there_ = false;
};

} // namespace Kestrona::Host
