#include "snapshot/snapshot_file.h"

#include "snapshot/file_problem.h"
#include "snapshot/layout.h"
#include "snapshot/zlib_stream.h"

#include <kestrona/data_compressor.h>
#include <kestrona/unicode.h>

#include <cerrno>
#include <cstdio>
#include <utility>

namespace Kestrona::Host::Snapshots {

namespace {

using DataCompressor::DataCompressor;

std::int64_t SizeOf(std::FILE* file) {
    return std::fseek(file, 0, SEEK_END) == 0 ? std::ftell(file) : -1;
}

} // namespace

std::unique_ptr<SnapshotFile> SnapshotFile::Open(const std::string& path, FileProblem& problem) {
    std::unique_ptr<SnapshotFile> snapshot(new SnapshotFile(path));
    if (!snapshot->OpenPlain(path, problem)) {
        return nullptr;
    }
    snapshot->size_on_disk_ = snapshot->size_;
    std::string start(kMarker.size(), '\0');
    std::rewind(snapshot->Stream());
    start.resize(std::fread(start.data(), 1, start.size(), snapshot->Stream()));
    if (std::ferror(snapshot->Stream()) != 0) {
        problem = SystemProblem(FileFault::CannotRead, path);
        return nullptr;
    }
    return LooksLikeZlib(start) && !snapshot->Decompress(problem) ? nullptr : std::move(snapshot);
}

bool SnapshotFile::OpenPlain(const std::string& path, FileProblem& problem) {
    file_ = OpenRegularFile(path, problem);
    if (file_ == nullptr) {
        problem.path = path_; // also where it is the copy that cannot be opened
        return false;
    }
    size_ = SizeOf(file_.get());
    if (size_ < 0) {
        problem = SystemProblem(FileFault::CannotRead, path_);
        return false;
    }
    return true;
}

bool SnapshotFile::Decompress(FileProblem& problem) {
    errno = 0;
    copy_ = std::make_unique<TemporaryFile>();
    if (copy_->Stream() == nullptr) {
        problem = SystemProblem(FileFault::CannotWrite, copy_->Path());
        return false;
    }
    errno = 0;
    const std::string source = PathOfOpenFile(file_.get(), path_);
    switch (DataCompressor().DecompressFile(FromUtf8(source), FromUtf8(copy_->Path()))) {
    case DataCompressor::kDone:
        return OpenCopy(problem);
    case DataCompressor::kDataDamaged:
        problem = {FileFault::Damaged, path_, {}, "its compressed data cannot be read", ""};
        return false;
    case DataCompressor::kFileFailed:
        problem = SystemProblem(FileFault::CannotWrite, copy_->Path()); // the other one has just been read
        return false;
    default:
        problem = {FileFault::CannotRead, path_, {}, "not enough memory", ""};
        return false;
    }
}

bool SnapshotFile::OpenCopy(FileProblem& problem) {
    const FileHandle compressed = std::move(file_);
    return OpenPlain(copy_->Path(), problem) && CheckStreamEnd(compressed.get(), path_, file_.get(), problem);
}

} // namespace Kestrona::Host::Snapshots
