#include "file_handle.h"
#include "snapshot/file_problem.h"
#include "snapshot/zlib_stream.h"

#include <kestrona/data_compressor.h>
#include <kestrona/host/compressed_file.h>
#include <kestrona/safe_file.h>
#include <kestrona/unicode.h>

#include <array>
#include <cerrno>
#include <string_view>

namespace Kestrona::Host {

namespace {

using DataCompressor::DataCompressor;
using Snapshots::SystemProblem;

using Conversion = std::int32_t (DataCompressor::*)(const std::wstring& source, const std::wstring& target);

FileProblem Unwritable(const std::string& path, const SafeFile& target) {
    return {FileFault::CannotWrite, path, {}, ToUtf8(target.Error()), ""};
}

// Why the source is no zlib stream.
FileProblem DamagedStream(const std::string& path, std::FILE* source) {
    std::array<char, 16> bytes{};
    std::rewind(source);
    const std::string_view start(bytes.data(), std::fread(bytes.data(), 1, bytes.size(), source));
    if (Snapshots::LooksLikeZlib(start)) {
        return {FileFault::Damaged, path, {}, "its compressed data cannot be read", ""};
    }
    return {FileFault::WrongMarker, path, 0, Snapshots::QuotedBytes(start), "a zlib stream"};
}

// Requires: `file` is the source, null where it cannot be opened; `problem` tells then.
bool Convert(std::FILE* file, const std::string& source, Conversion conversion, const std::string& target,
             SafeFile& draft, FileProblem& problem) {
    if (file == nullptr) {
        return false;
    }
    if (!draft.IsOpen()) {
        problem = Unwritable(target, draft);
        return false;
    }
    errno = 0;
    const std::int32_t result =
        (DataCompressor().*conversion)(FromUtf8(PathOfOpenFile(file, source)), draft.DraftPath());
    if (result == DataCompressor::kDataDamaged) {
        problem = DamagedStream(source, file);
    } else if (result == DataCompressor::kFileFailed) {
        problem = SystemProblem(FileFault::CannotWrite, target); // the source has just been opened
    } else if (result != DataCompressor::kDone) {
        problem = {FileFault::CannotRead, source, {}, "not enough memory", ""};
    }
    return result == DataCompressor::kDone;
}

bool Commit(const std::string& path, SafeFile& draft, FileProblem& problem) {
    const bool written = draft.Commit();
    if (!written) {
        problem = Unwritable(path, draft);
    }
    return written;
}

} // namespace

bool CompressFile(const std::string& source, const std::string& target, FileProblem& problem) {
    SafeFile draft(FromUtf8(target));
    const FileHandle file = Snapshots::OpenRegularFile(source, problem);
    return Convert(file.get(), source, &DataCompressor::CompressFile, target, draft, problem) &&
           Commit(target, draft, problem);
}

bool DecompressFile(const std::string& source, const std::string& target, FileProblem& problem) {
    SafeFile draft(FromUtf8(target));
    const FileHandle file = Snapshots::OpenRegularFile(source, problem);
    return Convert(file.get(), source, &DataCompressor::DecompressFile, target, draft, problem) &&
           Snapshots::CheckStreamEnd(file.get(), source, draft.File(), problem) && Commit(target, draft, problem);
}

} // namespace Kestrona::Host
