#pragma once

#include "commands/record_commands.h"

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

/// \file
/// Switches that several commands have.

namespace Kestrona::Tool {

void AddOutputForm(CLI::App& command, OutputForm& form);

/// A definition as its author wrote it.
void AddDefinitionSource(CLI::App& command, std::string& definition);
/// Whatever holds a definition.
void AddDefinition(CLI::App& command, std::string& definition);

/// Returns the switch, so that a command can require it.
CLI::Option* AddFolders(CLI::App& command, std::vector<std::string>& folders);

/// How the texts of CSV files are encoded.
void AddEncoding(CLI::App& command, TextEncoding& encoding);

/// The file that a text goes to, in place of stdout.
void AddFile(CLI::App& command, std::string& file);

void AddDataset(CLI::App& command, std::string& dataset);

/// Stored values or display texts, where the output form does not choose.
void AddCellStyle(CLI::App& command, bool& raw, bool& text);

/// The switches that name a key.
void AddKey(CLI::App& command, KeyOptions& key);

/// What every command that prints records of a format has, from the file to the output form.
void AddRecordChoice(CLI::App& command, RecordChoice& choice);

} // namespace Kestrona::Tool
