#pragma once

#include "output/message.h"
#include "output/table_source.h"

#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// \file
/// Tables on their way to a file, and the files that there are.

namespace Kestrona::Tool {

enum class ExportType {
    Integer,
    Real,
    Date, ///< Cells are ISO dates, or numbers of days where there is no such date.
    Text,
};

struct ExportColumn {
    ExportType type = ExportType::Text;
    std::optional<std::size_t> target; ///< The table, among those exported, whose keys the cells hold.
};

struct ExportTable {
    std::string name; ///< UTF-8.
    std::unique_ptr<TableSource> source;
    std::vector<ExportColumn> columns; ///< One for each column of the source.
    std::optional<std::size_t> key;    ///< The key's column; nothing where the cells are no stored values.
};

struct ExportResult {
    std::optional<Problem> error = {};   ///< What went wrong.
    std::vector<std::string> notes = {}; ///< What the user should know.
    std::vector<Problem> warnings = {};  ///< What is not as it was.
    bool lossy = false;                  ///< The file does not hold all of the data; the warnings tell what is missing.
};

/// Writes each table to a file NAME.csv in a folder, which is made if it is not there. Each file appears whole or not
/// at all.
[[nodiscard]] ExportResult WriteCsvFolder(const std::vector<ExportTable>& tables, const std::string& folder);

/// Writes one object, `{"version":1,"tables":{NAME:[...]}}`. The file appears whole or not at all, as with the others.
[[nodiscard]] ExportResult WriteJsonFile(const std::vector<ExportTable>& tables, const std::string& path);

/// Likewise to a stream.
[[nodiscard]] ExportResult WriteJsonTables(const std::vector<ExportTable>& tables, std::FILE* out);
/// Writes one table to a stream, as `WriteCsvFolder` does to its file.
[[nodiscard]] ExportResult WriteCsvTable(const ExportTable& table, std::FILE* out);

/// Writes a database with a table for each one. Columns that hold keys of an exported table become foreign keys.
[[nodiscard]] ExportResult WriteSqliteFile(const std::vector<ExportTable>& tables, const std::string& path);

/// Writes a workbook with a sheet for each table. Nothing is written if a table is too large for a sheet.
[[nodiscard]] ExportResult WriteXlsxFile(const std::vector<ExportTable>& tables, const std::string& path);

} // namespace Kestrona::Tool
