#pragma once

#include "data/text_decoder.h"
#include "encryption.h"
#include "export/export_table.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Kestrona::Tool {

enum class ExportForm {
    Csv,
    Json,
    Sqlite,
    Xlsx
};

struct ExportOptions {
    std::string file; ///< What holds the definition, and the records if no folder gives them.
    KeyOptions key;
    std::vector<std::string> folders;
    TextEncoding encoding = TextEncoding::Auto; ///< Of the CSV files.
    ExportForm form = ExportForm::Csv;
    std::string target;
    std::vector<std::string> tables; ///< Names of formats; empty for all.
    std::string dataset;             ///< The one of several datasets; empty for the first.
    bool raw = false;                ///< Export stored values, as without `text`.
    bool text = false;               ///< Export display texts.
};

/// Writes tables to a folder of CSV files, or to a JSON, SQLite or XLSX file. Returns an exit code.
int RunExport(const ExportOptions& options);

/// Adds the command; `code` takes its exit code.
void AddExportCommand(CLI::App& app, int& code);

} // namespace Kestrona::Tool
