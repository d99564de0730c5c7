#include "snapshot/part_reader.h"

#include "snapshot/file_problem.h"
#include "snapshot/snapshot_file.h"

#include <kestrona/unicode.h>

namespace Kestrona::Host::Snapshots {

PartReader::PartReader(const SnapshotFile& file, std::int64_t begin, std::int64_t end, FileProblem& problem)
    : file_(file),
      offset_(begin),
      end_(end),
      problem_(problem) {
    std::fseek(file.Stream(), begin, SEEK_SET);
}

bool PartReader::Read(void* target, std::int64_t size) {
    const std::int64_t left = end_ - offset_;
    if (left < size) {
        const FileFault fault = end_ == file_.Size() ? FileFault::Truncated : FileFault::Damaged;
        problem_ = {fault, file_.Path(), offset_, Bytes(left), Bytes(size)};
        return false;
    }
    if (size > 0 && std::fread(target, static_cast<std::size_t>(size), 1, file_.Stream()) != 1) {
        problem_ = SystemProblem(FileFault::CannotRead, file_.Path());
        return false;
    }
    offset_ += size;
    return true;
}

bool PartReader::Read(std::wstring& text) {
    const std::int64_t start = offset_;
    std::int32_t count = 0;
    if (!Read(count)) {
        return false;
    }
    if (count < 0) {
        return Damaged(start, "a text of " + std::to_string(count) + " units", "a length");
    }
    std::u16string units;
    const std::int64_t size = std::int64_t{count} * 2;
    if (size <= end_ - offset_) {
        units.resize(static_cast<std::size_t>(count));
    }
    if (!Read(units.data(), size)) {
        return false;
    }
    text = FromUtf16(units);
    return true;
}

bool PartReader::Damaged(std::int64_t offset, const std::string& found, const std::string& expected) {
    problem_ = {FileFault::Damaged, file_.Path(), offset, found, expected};
    return false;
}

} // namespace Kestrona::Host::Snapshots
