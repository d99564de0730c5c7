#include "commands/diff_command.h"

#include "commands/command_options.h"
#include "commands/file_problems.h"
#include "commands/host_output.h"
#include "commands/import_folders.h"
#include "commands/record_source.h"
#include "commands/saved_secrets.h"
#include "data/compiled_head.h"
#include "data/definition_reader.h"
#include "data/field_names.h"
#include "diff/diff_source.h"
#include "exit_codes.h"
#include "output/message.h"
#include "output/peak_memory.h"
#include "output/text_output.h"

#include <kestrona/host/default_host.h>
#include <kestrona/host/snapshot.h>
#include <kestrona/unicode.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <system_error>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;
using Data::MemoryResident::MemoryResidentData;

/// The code that differences have must not stand for findings in a definition or rejected rows.
int ExitCodeOfInput(int code) {
    return code == kExitFindings ? static_cast<int>(kExitDamagedInput) : code;
}

/// Whether the beginning of a file is one that is read; `problem` otherwise.
bool CheckStart(const std::string& file, Host::FileProblem& problem) {
    const Host::FileKind kind = Host::KindOfFile(file);
    return (kind != Host::FileKind::Other || CheckIsText(file, problem)) &&
           (kind != Host::FileKind::CompiledDefinition || CheckCompiledHead(file, problem));
}

int LoadFile(Host::DefaultHost& host, const std::string& file, const std::string& dataset, MemoryResidentData& store) {
    if (const int code = RefuseUnreadable(file); code != kExitGood) {
        return code;
    }
    if (Host::FileProblem problem; !CheckStart(file, problem)) {
        return TellProblem(problem);
    }
    switch (host.FillFromFile(file, store, FromUtf8(dataset))) {
    case Host::LoadOutcome::Ok:
        return IsSnapshot(Host::KindOfFile(file)) ? OpenSavedSecrets(store) : int{kExitGood};
    case Host::LoadOutcome::Unreadable:
        return kExitUnreadableInput;
    case Host::LoadOutcome::Findings:
    case Host::LoadOutcome::AlreadyLoaded:
        break;
    }
    return ExitCodeOfInput(ExitCodeOf(host.LastFileProblem().fault));
}

/// Returns whether the store can be compared; `code` takes the worst of what has happened.
bool LoadSide(Host::DefaultHost& host, const DiffInput& input, const DiffOptions& options, MemoryResidentData& store,
              int& code) {
    if (!input.folders.empty() && IsSnapshot(Host::KindOfFile(input.file))) {
        TellError(Code::RecordsTwice, Hint{"Give it no folder."}, "'{}' is a snapshot and has its own records",
                  input.file);
        code = kExitUsage;
        return false;
    }
    const int loaded = LoadFile(host, input.file, options.dataset, store);
    if (loaded != kExitGood) {
        code = loaded;
        return false;
    }
    if (input.folders.empty()) {
        return true;
    }
    const int imported = ExitCodeOfInput(ImportFolders(store, input.folders, options.encoding));
    code = std::max(code, imported);
    return imported != kExitUnreadableInput;
}

bool HaveTables(const DiffSides& sides, const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        if (FormatNamed(sides.old_store, name) < 0 && FormatNamed(sides.new_store, name) < 0) {
            TellError(Code::UnknownFormat, "no format of either side is called '{}'", name);
            return false;
        }
    }
    return true;
}

void TellRepeats(const std::string& table, std::size_t repeats, const char* side) {
    if (repeats > 0) {
        TellWarning(Code::RepeatedKeys,
                    "{}: {} records of the {} side have the key of an earlier one; records of one key "
                    "are compared in their order",
                    table, repeats, side);
    }
}

/// Names the encrypted fields of which only one thing is known, whether there is a text.
void TellLocked(const DiffSides& sides, const TableDiff& diff) {
    for (const FieldPair& pair : diff.fields) {
        const std::int32_t format = pair.old_field.format;
        const std::int32_t field = pair.old_field.field;
        const bool is_locked = IsLocked(sides.old_store, format, field) ||
                               IsLocked(sides.new_store, pair.new_field.format, pair.new_field.field);
        if (is_locked && diff.old_records > 0 && diff.new_records > 0) {
            TellWarning(Code::NoKey, "{}.{} is encrypted, and there is no key: texts that differ cannot be told",
                        diff.name, ToUtf8(sides.old_store.GetColumnName(format, field)));
        }
    }
}

/// Returns whether there is a difference.
bool TellNumbers(const DiffSides& sides, const std::vector<TableDiff>& diffs) {
    std::size_t differing = 0;
    std::size_t removed = 0;
    std::size_t added = 0;
    std::size_t changed = 0;
    for (const TableDiff& diff : diffs) {
        TellRepeats(diff.name, diff.old_repeats, "old");
        TellRepeats(diff.name, diff.new_repeats, "new");
        TellLocked(sides, diff);
        differing += static_cast<std::size_t>(diff.Differs());
        removed += diff.removed.size();
        added += diff.added.size();
        changed += diff.changed_records;
    }
    fmt::print(stderr, "{} of {} tables differ: {} records removed, {} added, {} changed; {}\n", differing,
               diffs.size(), removed, added, changed, PeakMemoryText());
    return differing > 0;
}

bool Print(const DiffOptions& options, const DiffSides& sides, const std::vector<TableDiff>& diffs) {
    const bool written =
        options.summary
            ? WriteReport("diff summary", DiffSummary(diffs), options.form, stdout)
            : WriteReport("diff", DiffSource(sides, diffs, StyleFor(options.form, options.raw, options.text)),
                          options.form, stdout);
    return OutputCode(written) == kExitGood;
}

int Compare(const DiffOptions& options, const DiffSides& sides) {
    if (!HaveTables(sides, options.tables)) {
        return kExitUsage;
    }
    const std::vector<TableDiff> diffs = CompareStores(sides, options.tables);
    if (!Print(options, sides, diffs)) {
        return kExitUnreadableInput;
    }
    return TellNumbers(sides, diffs) ? kExitFindings : kExitGood;
}

std::string RefuseNoDistance(const std::string& text) {
    double value = 0.0;
    const char* const end = text.data() + text.size();
    const auto [rest, failure] = std::from_chars(text.data(), end, value);
    const bool is_distance = failure == std::errc() && rest == end && std::isfinite(value) && value >= 0.0;
    return is_distance ? "" : fmt::format("'{}' is no number from 0 on", text);
}

} // namespace

int RunDiff(const DiffOptions& options) {
    Host::DefaultHostOptions host_options;
    host_options.progress = true;
    TellThroughTool(host_options);
    host_options.reader = [&options](const std::string& path) {
        return ReadDefinition(path, path == options.old_input.file || path == options.new_input.file);
    };
    Host::DefaultHost host(std::move(host_options));
    int code = SetUpKey(options.key);
    if (code != kExitGood) {
        return code;
    }
    const auto old_store = host.CreateStore();
    const auto new_store = host.CreateStore();
    if (!LoadSide(host, options.old_input, options, *old_store, code) ||
        !LoadSide(host, options.new_input, options, *new_store, code)) {
        return code;
    }
    const bool only_saved =
        IsSnapshot(Host::KindOfFile(options.old_input.file)) || IsSnapshot(Host::KindOfFile(options.new_input.file));
    return std::max(code, Compare(options, {*old_store, *new_store, options.tolerance, only_saved}));
}

void AddDiffCommand(CLI::App& app, int& code) {
    const auto options = std::make_shared<DiffOptions>();
    CLI::App* const command =
        app.add_subcommand("diff", "Compare two sets of records by their keys; exit code 1 when they differ");
    command->add_option("OLD", options->old_input.file, "Definition file, compiled definition or snapshot")->required();
    command->add_option("NEW", options->new_input.file, "Likewise")->required();
    const auto add_many = [command](const char* name, std::vector<std::string>& values, const char* help,
                                    const char* word) {
        command->add_option(name, values, help)->option_text(word)->allow_extra_args(false);
    };
    add_many("--data-old", options->old_input.folders, "Folder of CSV files for OLD; may be repeated", "FOLDER");
    add_many("--data-new", options->new_input.folders, "Folder of CSV files for NEW; may be repeated", "FOLDER");
    AddEncoding(*command, options->encoding);
    add_many("--table", options->tables, "Format to compare; may be repeated; all without it", "TABLE");
    command
        ->add_option("--tolerance", options->tolerance,
                     "Numbers, dates and durations that are no further apart count as equal")
        ->check(RefuseNoDistance)
        ->option_text("X");
    command->add_flag("--summary", options->summary, "Print the numbers for each table only");
    command->add_option("--dataset", options->dataset, "Dataset of the tables of snapshots that have several")
        ->option_text("NAME");
    AddOutputForm(*command, options->form);
    AddCellStyle(*command, options->raw, options->text);
    AddKey(*command, options->key);
    command->callback([options, &code] { code = RunDiff(*options); });
}

} // namespace Kestrona::Tool
