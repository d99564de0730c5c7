#include "commands/command_options.h"

#include "commands/choice.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <charconv>
#include <cstddef>
#include <string>
#include <system_error>

namespace Kestrona::Tool {
namespace {

/// The conversion of the option would turn a negative number round and cut one that is too large.
std::string RefuseNoCount(const std::string& text) {
    std::size_t count = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, failure] = std::from_chars(text.data(), end, count);
    return failure == std::errc() && rest == end ? "" : fmt::format("'{}' is no number of records", text);
}

} // namespace

void AddOutputForm(CLI::App& command, OutputForm& form) {
    command.add_option("-o,--output", form, "Output form: table, csv, json, jsonl or markdown")
        ->transform(OneOf(OutputFormNames()))
        ->option_text("FORM");
}

void AddDefinitionSource(CLI::App& command, std::string& definition) {
    command.add_option("DEFINITION", definition, "Definition file")->required();
}

void AddDefinition(CLI::App& command, std::string& definition) {
    command.add_option("DEFINITION", definition, "Definition file, compiled definition or snapshot")->required();
}

CLI::Option* AddFolders(CLI::App& command, std::vector<std::string>& folders) {
    return command.add_option("--data", folders, "Folder of CSV files, one for each format; may be repeated")
        ->option_text("FOLDER")
        ->allow_extra_args(false);
}

void AddEncoding(CLI::App& command, TextEncoding& encoding) {
    command
        .add_option("--encoding", encoding,
                    "Encoding of the CSV files without a byte order mark: auto (UTF-8), utf-8, utf-16 or windows-1252")
        ->transform(OneOf(TextEncodingNames()))
        ->option_text("ENCODING");
}

void AddFile(CLI::App& command, std::string& file) {
    command.add_option("-f,--file", file, "File to write; stdout without it")->option_text("FILE");
}

void AddDataset(CLI::App& command, std::string& dataset) {
    command.add_option("--dataset", dataset, "Dataset of the tables of a snapshot that have several")
        ->option_text("NAME");
}

void AddCellStyle(CLI::App& command, bool& raw, bool& text) {
    CLI::Option* const stored = command.add_flag("--raw", raw, "Print stored values; csv, json and jsonl do so");
    command.add_flag("--text", text, "Print display texts; table and markdown do so")->excludes(stored);
}

void AddKey(CLI::App& command, KeyOptions& key) {
    command.add_option("--key-file", key.file, "File with the key of encrypted fields, protected or plain")
        ->option_text("FILE");
    command.add_flag("--ask-key", key.ask,
                     "Ask for the pass phrase at the terminal if neither --key-file nor the environment gives it");
}

void AddRecordChoice(CLI::App& command, RecordChoice& choice) {
    AddDefinition(command, choice.source);
    command.add_option("TABLE", choice.table, "Format of the records")->required();
    AddFolders(command, choice.folders);
    AddEncoding(command, choice.encoding);
    AddDataset(command, choice.dataset);
    command
        .add_option("--where", choice.conditions,
                    "Print only records with FIELD=VALUE (the sign may be = < <= > >=), or for which an expression is "
                    "not 0; may be repeated, and all must hold")
        ->option_text("CONDITION")
        ->allow_extra_args(false);
    command.add_option("--order", choice.order, "Sort by these fields, divided by commas; :desc turns one round")
        ->delimiter(',')
        ->option_text("FIELD[:desc],...")
        ->allow_extra_args(false);
    command.add_flag("--group-family", choice.group_families, "Print members of a family behind their parent");
    command.add_option("--limit", choice.limit, "Print at most this many records")
        ->check(RefuseNoCount)
        ->option_text("N");
    AddKey(command, choice.key);
    AddOutputForm(command, choice.form);
}

} // namespace Kestrona::Tool
