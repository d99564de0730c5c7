#pragma once

#include <kestrona/export.h>
#include <kestrona/store.h>

#include <cstdint>
#include <cstdio>

/// \file
/// The records of one format in a file.

namespace Kestrona::Common {

/// Writes and reads table data blocks: the number of records, then column by column what the fields store. Fields that
/// are calculated, not persisted, or share another field's matrices leave nothing in a block. docs/file-formats.md
/// tells the layout.
class KS_API TableStorage {
public:
    TableStorage() = delete;

    /// Appends the block of a format to an open file. A failed write shows in `std::ferror(file)`. A format that does
    /// not exist writes nothing.
    static void WriteTableData(Data::MemoryResident::MemoryResidentData& store, std::int32_t format, std::FILE* file);

    /// Reads a block into a format that has the same fields as when it was written. Numbers replace the records of the
    /// format and count as no change; texts are written over the first records and count as changes, so empty the
    /// format before (`KSDLL_Clear`) unless it is empty.
    ///
    /// A matrix keeps the id of the file unless another cell of the process holds it; then it gets a new one. Where the
    /// file ends too early, what stands before the end is taken, and `std::feof(file)` tells. A record count that no
    /// format can have, or one above 2^24 that exceeds the bytes of the file, reads as 0, and nothing more is read.
    /// Memory follows what the file really holds.
    static void ReadTableData(Data::MemoryResident::MemoryResidentData& store, std::int32_t format, std::FILE* file);
};

} // namespace Kestrona::Common
