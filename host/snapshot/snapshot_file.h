#pragma once

#include "file_handle.h"
#include "temporary_file.h"

#include <kestrona/host/snapshot.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>

namespace Kestrona::Host::Snapshots {

// A snapshot that is open for reading; of a compressed one the decompressed copy.
class SnapshotFile {
public:
    // Null, and `problem`, when it cannot be opened or decompressed.
    static std::unique_ptr<SnapshotFile> Open(const std::string& path, FileProblem& problem);

    [[nodiscard]] const std::string& Path() const { return path_; }

    [[nodiscard]] std::FILE* Stream() const { return file_.get(); }

    [[nodiscard]] std::int64_t Size() const { return size_; }

    [[nodiscard]] std::int64_t SizeOnDisk() const { return size_on_disk_; }

    [[nodiscard]] bool IsCompressed() const { return copy_ != nullptr; }

private:
    explicit SnapshotFile(std::string path) : path_(std::move(path)) {}

    bool OpenPlain(const std::string& path, FileProblem& problem);
    bool Decompress(FileProblem& problem);
    bool OpenCopy(FileProblem& problem);

    std::string path_;
    std::unique_ptr<TemporaryFile> copy_;
    FileHandle file_;
    std::int64_t size_ = 0;
    std::int64_t size_on_disk_ = 0;
};

} // namespace Kestrona::Host::Snapshots
