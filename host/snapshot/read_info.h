#pragma once

#include "snapshot/snapshot_file.h"

#include <cstdint>
#include <optional>

namespace Kestrona::Host::Snapshots {

// The records of one table block in the file.
struct TableData {
    std::int64_t begin = 0; // of the record count
    std::int64_t end = 0;
};

// Reads and checks header, directory and the head of each block. Nothing, and `problem`, when something is wrong.
[[nodiscard]] std::optional<SnapshotInfo> ReadInfo(const SnapshotFile& file, FileProblem& problem);

// Reads the head of a block that reaches up to `end` into `table`, whose offset is set.
[[nodiscard]] std::optional<TableData> ReadTableHead(const SnapshotFile& file, std::int64_t end, SnapshotTable& table,
                                                     FileProblem& problem);

} // namespace Kestrona::Host::Snapshots
