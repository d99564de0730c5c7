#pragma once

#include "commands/file_commands.h"

#include <kestrona/host/snapshot.h>
#include <kestrona/store.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// \file
/// From CSV files to a snapshot.

namespace Kestrona::Tool {

/// Further records of some formats.
struct ImportedDataset {
    std::wstring name;
    std::string folder;
    std::vector<std::int32_t> formats; ///< Those that have a file in the folder.
};

/// Brings records into a store and from there into a snapshot.
class SnapshotImport {
public:
    /// Borrows the first two. Requires: a store with a definition and without records.
    SnapshotImport(Data::MemoryResident::MemoryResidentData& store, const ImportOptions& options,
                   std::vector<ImportedDataset> datasets)
        : store_(store),
          options_(options),
          datasets_(std::move(datasets)) {}

    /// Says on stderr what becomes of the files. Returns an exit code.
    int Run();

private:
    bool FindFormats();
    [[nodiscard]] std::int32_t Blocks() const;
    bool Read(const std::vector<std::string>& folders);
    void Restore();
    void AddAll(Host::SnapshotWriter& writer);
    void Add(Host::SnapshotWriter& writer, const ImportedDataset& dataset);
    void AddTable(Host::SnapshotWriter& writer, std::int32_t format, const std::wstring& dataset);
    [[nodiscard]] int Finish() const;

    Data::MemoryResident::MemoryResidentData& store_;
    const ImportOptions& options_;
    std::vector<ImportedDataset> datasets_;
    std::int64_t records_ = 0;
    int code_ = 0;
};

} // namespace Kestrona::Tool
