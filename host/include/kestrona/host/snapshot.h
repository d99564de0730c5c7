#pragma once

#include <kestrona/safe_file.h>
#include <kestrona/store.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// \file
/// Snapshots: a whole plant in one file, its definition and its records. docs/file-formats.md tells the layout.

namespace Kestrona::Host {

/// What went wrong with a file.
enum class FileFault : std::uint8_t {
    None,
    CannotOpen,
    CannotRead,
    CannotWrite,
    WrongMarker,  ///< It is another kind of file.
    WrongVersion, ///< It is the right kind, of a version that is not read.
    Truncated,    ///< It ends too early.
    Damaged,      ///< Something in it cannot be.
    TooLarge,     ///< A snapshot would get larger than its offsets reach, 2 GiB - 1.
};

/// A failure, with what there is to say about it.
struct FileProblem {
    FileFault fault = FileFault::None;
    std::string path; ///< UTF-8.
    /// Where in the file, in bytes: the uncompressed file, unless it is the compression that is broken.
    std::optional<std::int64_t> offset;
    std::string found;    ///< What stands there, or what the system says.
    std::string expected; ///< What should stand there, "" where nothing is to be said.

    /// One line of UTF-8: "'a.kes' ends too early at offset 62: found 3 bytes, expected 128 bytes".
    [[nodiscard]] std::string ToString() const;
};

/// One table block of a snapshot.
struct SnapshotTable {
    std::wstring name;
    std::wstring dataset; ///< "" for a table without datasets.
    std::int32_t fields = 0;
    std::int32_t records = 0;
    std::int64_t offset = 0; ///< Of the block, in bytes.
    std::int64_t size = 0;   ///< Of what follows the record count, in bytes.
};

/// What can be told of a snapshot without loading it.
struct SnapshotInfo {
    bool compressed = false;
    std::int32_t layout = 0;               ///< `HeaderValue`; 1 for what this host writes.
    std::int64_t saved_at = 0;             ///< `HeaderStamp`: milliseconds since the beginning of 1970 in UTC.
    std::array<std::int32_t, 4> version{}; ///< Of the library that wrote it.
    std::int32_t matrix_count = 0;
    std::int64_t definition_size = 0;
    std::int64_t file_size = 0; ///< As it lies on the disk.
    std::int64_t uncompressed_size = 0;
    std::vector<SnapshotTable> tables; ///< In the order of the file.
};

/// The kind of a file, from its first bytes.
enum class FileKind : std::uint8_t {
    Unreadable,
    Snapshot,
    CompressedSnapshot,
    CompiledDefinition,
    Other, ///< Perhaps the source of a definition.
};

/// Looks at the beginning of a file (UTF-8 path).
[[nodiscard]] FileKind KindOfFile(const std::string& path);

/// Reads header and directory of a snapshot and checks them against the file's size. Cost grows with the number of
/// tables, not with their size; a compressed snapshot is decompressed to a temporary file first, and its checksum
/// compared. Nothing, and `problem`, when it cannot be told.
[[nodiscard]] std::optional<SnapshotInfo> ReadSnapshotInfo(const std::string& path, FileProblem& problem);

/// How a snapshot is written.
struct SnapshotOptions {
    bool compress = false; ///< As one zlib stream.
};

/// Writes a snapshot, table by table. The file appears under its name whole, at `Commit`, or not at all; what stood
/// there before stays as it is until then.
///
/// A table can be added several times, with the records of another dataset in the store each time.
class SnapshotWriter {
public:
    /// `tables` is how many blocks will be added. The definition of `store`, which is borrowed, is written now. Every
    /// format must have a name.
    SnapshotWriter(Data::MemoryResident::MemoryResidentData& store, const std::string& path, std::int32_t tables,
                   SnapshotOptions options = {});
    SnapshotWriter(const SnapshotWriter&) = delete;
    SnapshotWriter& operator=(const SnapshotWriter&) = delete;
    ~SnapshotWriter();

    /// Appends the records that the format holds now, under the name of a dataset or "". False after a failure.
    bool AddTable(std::int32_t format, const std::wstring& dataset);
    /// Finishes the file. False when anything has failed, or when not as many tables were added as promised.
    [[nodiscard]] bool Commit();

    [[nodiscard]] const FileProblem& Problem() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// Writes a snapshot of a whole store: each format once, with the name of its current dataset. Formats of which nothing
/// is kept (EXCLUDE FROM DB on the key) are written without records. False, and `problem`, when it failed.
[[nodiscard]] bool SaveSnapshot(Data::MemoryResident::MemoryResidentData& store, const std::string& path,
                                const SnapshotOptions& options, FileProblem& problem);

/// Loads a snapshot as working data into a store that has no formats: its definition, resolved, and its records. Of a
/// table with several datasets the block called `dataset` is loaded, else the first one. The whole file is checked
/// before the store is touched as far as that is possible without loading; false, and `problem`, when it failed, also
/// where the resolution has reported (then `problem.fault` is `None`). The store must be thrown away then. Nothing that
/// was loaded counts as changed. The help file name of the process becomes that of the snapshot.
[[nodiscard]] bool LoadSnapshot(const std::string& path, Data::MemoryResident::MemoryResidentData& store,
                                const std::wstring& dataset, FileProblem& problem);

/// Loads one block of `info.tables` into its format, in the place of what the format holds. For tables with several
/// datasets, after `LoadSnapshot`. Compressed snapshots are decompressed anew for each call.
[[nodiscard]] bool LoadSnapshotTable(const std::string& path, Data::MemoryResident::MemoryResidentData& store,
                                     const SnapshotTable& table, FileProblem& problem);

} // namespace Kestrona::Host
