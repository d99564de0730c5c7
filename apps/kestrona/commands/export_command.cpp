#include "commands/export_command.h"

#include "commands/choice.h"
#include "commands/command_options.h"
#include "commands/import_folders.h"
#include "commands/session.h"
#include "exit_codes.h"
#include "export/record_tables.h"
#include "output/message.h"
#include "output/peak_memory.h"
#include "output/progress.h"
#include "output/text_output.h"

#include <kestrona/unicode.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

const std::map<std::string, ExportForm>& ExportFormNames() {
    static const std::map<std::string, ExportForm> names{{"csv", ExportForm::Csv},
                                                         {"json", ExportForm::Json},
                                                         {"sqlite", ExportForm::Sqlite},
                                                         {"xlsx", ExportForm::Xlsx}};
    return names;
}

ExportResult Write(ExportForm form, const std::vector<ExportTable>& tables, const std::string& target) {
    switch (form) {
    case ExportForm::Csv:
        return WriteCsvFolder(tables, target);
    case ExportForm::Json:
        return WriteJsonFile(tables, target);
    case ExportForm::Sqlite:
        return WriteSqliteFile(tables, target);
    case ExportForm::Xlsx:
        break;
    }
    return WriteXlsxFile(tables, target);
}

bool FitsStdout(const ExportOptions& options) {
    return options.form == ExportForm::Json || (options.form == ExportForm::Csv && options.tables.size() == 1);
}

/// Has the tables tell how far their reader has come.
void Watch(std::vector<ExportTable>& tables, Progress& progress) {
    for (ExportTable& table : tables) {
        table.source = std::make_unique<WatchedSource>(std::move(table.source), progress);
    }
}

std::uintmax_t RowsOf(const std::vector<ExportTable>& tables) {
    std::uintmax_t rows = 0;
    for (const ExportTable& table : tables) {
        rows += table.source->RowCount();
    }
    return rows;
}

ExportResult WriteWatched(const ExportOptions& options, std::vector<ExportTable>& tables) {
    Progress progress("writing records", RowsOf(tables));
    Watch(tables, progress);
    if (options.target != kStdout) {
        return Write(options.form, tables, options.target);
    }
    return options.form == ExportForm::Json ? WriteJsonTables(tables, stdout) : WriteCsvTable(tables.front(), stdout);
}

/// In the order of the definition, each format once.
std::optional<std::vector<std::int32_t>> ChooseFormats(Session& session, const std::vector<std::string>& names) {
    std::vector<std::int32_t> formats;
    for (const std::string& name : names) {
        formats.push_back(session.FindFormat(name));
        if (formats.back() < 0) {
            return std::nullopt;
        }
    }
    for (std::int32_t format = 0; names.empty() && format < session.Store().GetFormatCount(); ++format) {
        formats.push_back(format);
    }
    std::ranges::sort(formats);
    formats.erase(std::unique(formats.begin(), formats.end()), formats.end());
    return formats;
}

/// Names the fields of which only the placeholder is exported.
void TellLocked(IMemoryResidentData& store, const std::vector<std::int32_t>& formats) {
    for (const std::int32_t format : formats) {
        for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
            if (store.GetCurrentDbSize(format) > 0 && IsLocked(store, format, field)) {
                TellWarning(Code::NoKey, "{}.{} is encrypted, and there is no key: its texts read {}",
                            ToUtf8(store.GetDbName(format)), ToUtf8(store.GetColumnName(format, field)),
                            kEncryptedPlaceholder);
            }
        }
    }
}

int TellResult(const ExportResult& result, const std::vector<ExportTable>& tables, const std::string& target) {
    for (const std::string& note : result.notes) {
        TellNote("{}", note);
    }
    for (const Problem& warning : result.warnings) {
        TellWarning(warning);
    }
    if (result.error) {
        TellError(*result.error);
        return kExitUnreadableInput;
    }
    fmt::print(stderr, "{} records of {} formats to {}; {}\n", RowsOf(tables), tables.size(), target, PeakMemoryText());
    return result.lossy ? kExitFindings : kExitGood;
}

} // namespace

int RunExport(const ExportOptions& options) {
    if (options.target == kStdout && !FitsStdout(options)) {
        TellError(Code::WrongForStdout, "stdout takes json, or csv of one format");
        return kExitUsage;
    }
    Session session;
    if (const int code = session.Load(options.file, options.key, options.dataset); code != kExitGood) {
        return code;
    }
    if (const int code = session.RefuseFolders(options.folders); code != kExitGood) {
        return code;
    }
    const auto formats = ChooseFormats(session, options.tables);
    if (!formats) {
        return kExitUsage;
    }
    const int code =
        options.folders.empty() ? int{kExitGood} : ImportFolders(session.Store(), options.folders, options.encoding);
    if (code == kExitUnreadableInput) {
        return code;
    }
    TellLocked(session.Store(), *formats);
    const bool reads_back = options.form == ExportForm::Csv && !options.text;
    std::vector<ExportTable> tables =
        TablesOf(session.Store(), *formats, reads_back ? ExportFields::Kept : ExportFields::All,
                 options.text ? CellStyle::Shown : CellStyle::Stored);
    const ExportResult result = WriteWatched(options, tables);
    return std::max(code, TellResult(result, tables, options.target));
}

void AddExportCommand(CLI::App& app, int& code) {
    const auto options = std::make_shared<ExportOptions>();
    CLI::App* const command = app.add_subcommand("export", "Write records to CSV, JSON, SQLite or XLSX files");
    command->add_option("FILE", options->file, "Definition file, compiled definition or snapshot")->required();
    AddFolders(*command, options->folders);
    AddEncoding(*command, options->encoding);
    AddDataset(*command, options->dataset);
    command->add_option("-f,--form", options->form, "Form: csv (a folder of files), json, sqlite or xlsx")
        ->required()
        ->transform(OneOf(ExportFormNames()))
        ->option_text("FORM");
    command
        ->add_option("-o,--output", options->target,
                     "Folder or file to write; - is stdout for json, and for csv of one format")
        ->required()
        ->option_text("TARGET");
    command->add_option("--table", options->tables, "Format to write; may be repeated; all without it")
        ->option_text("TABLE")
        ->allow_extra_args(false);
    CLI::Option* const raw = command->add_flag("--raw", options->raw, "Write stored values; the default");
    command->add_flag("--text", options->text, "Write display texts")->excludes(raw);
    AddKey(*command, options->key);
    command->callback([options, &code] { code = RunExport(*options); });
}

} // namespace Kestrona::Tool
