#pragma once

#include <kestrona/host/snapshot.h>

#include <cstdint>
#include <string>

namespace Kestrona::Host::Snapshots {

class SnapshotFile;

// Reads numbers and texts of a part of a snapshot, and none behind its end.
class PartReader {
public:
    // The part from `begin` up to `end`, both inside the file. `problem` is told what fails.
    PartReader(const SnapshotFile& file, std::int64_t begin, std::int64_t end, FileProblem& problem);

    [[nodiscard]] std::int64_t Offset() const { return offset_; }

    // Each reads from the place where the one before ended. False, with `problem` told and the target as it was, where
    // the part ends too early or cannot be read.
    bool Read(void* target, std::int64_t size);

    bool Read(std::int32_t& number) { return Read(&number, sizeof number); }

    bool Read(std::wstring& text);

    // Tells `problem` that something in the part cannot be; returns false.
    bool Damaged(std::int64_t offset, const std::string& found, const std::string& expected);

private:
    const SnapshotFile& file_;
    std::int64_t offset_;
    std::int64_t end_;
    FileProblem& problem_;
};

} // namespace Kestrona::Host::Snapshots
