#pragma once

#include "data/text_decoder.h"
#include "output/message.h"

#include <kestrona/memory_resident_data.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// \file
/// Brings a folder of delimited files into a store.

namespace Kestrona::Tool {

/// A cell, or a whole row, that was not taken over.
struct Rejection {
    std::string file;
    std::size_t line = 0;
    std::string column; ///< Empty when the row as a whole is at fault.
    std::string value;
    Problem reason;
};

/// A cell of a record that waits until all formats hold their records.
struct PendingCell {
    std::int32_t record = -1;
    std::int32_t field = -1;
    std::size_t line = 0;
    std::string text; ///< Not empty.
};

/// What became of one file.
struct ImportedFile {
    std::string file;
    std::int32_t format = -1;
    std::size_t rows = 0;                ///< Records made.
    std::size_t rejected_rows = 0;       ///< Rows left out.
    std::vector<PendingCell> matrices;   ///< Waiting for the formats that dimension them.
    std::vector<PendingCell> references; ///< Texts, waiting for the records that they belong to.
    std::vector<std::string> notes;
    std::vector<Problem> warnings;
    std::optional<Problem> error; ///< The file ended early or could not be read.
    bool unreadable = false;
};

struct ImportReport {
    std::vector<ImportedFile> files;
    std::vector<Rejection> rejections; ///< All of them, in the order met.
    std::string error;                 ///< Not empty when the folder cannot be read.
};

/// A file that holds the records of a format.
struct FormatFile {
    std::int32_t format = -1;
    std::string path;
};

/// Returns, for each format of the store that has one in the folder, the file of that name: `NAME.csv`, or one whose
/// name ends in `.NAME.csv`. Says through `error` that the folder cannot be read.
[[nodiscard]] std::vector<FormatFile> FindFiles(Data::MemoryResident::IMemoryResidentData& store,
                                                const std::string& folder, std::string& error);

/// Loads the files that `FindFiles` gives.
///
/// The first row gives the field names; a file whose first row holds none has its columns in the order of the stored
/// fields. A row with a cell that does not fit its field, with too few or too many cells, or with a key that an earlier
/// row has, is left out whole and reported. A key column that the file does not have is numbered from 1.
ImportReport ImportFolder(Data::MemoryResident::IMemoryResidentData& store, const std::string& folder,
                          TextEncoding encoding);

/// Returns the last one of each format's files, which is the one that counts.
[[nodiscard]] std::map<std::int32_t, const ImportedFile*> LastFiles(const std::vector<ImportedFile>& files);

/// References of a field that no record of the format referred to has.
struct DanglingReferences {
    std::int32_t format = -1;
    std::int32_t field = -1;
    std::size_t set = 0;      ///< Cells that refer to something.
    std::size_t dangling = 0; ///< Of these, the ones without a target.
};

/// Follows every DATABASE reference between formats that hold records.
std::vector<DanglingReferences> CheckReferences(Data::MemoryResident::IMemoryResidentData& store);

} // namespace Kestrona::Tool
