#include "commands/file_commands.h"

#include "commands/command_options.h"
#include "output/text_output.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace Kestrona::Tool {
namespace {

/// These files are written aside and renamed, so that stdout cannot take their place.
std::string RefuseStdout(const std::string& target) {
    return target == kStdout ? "'-' is no file to write; name one" : "";
}

void AddTarget(CLI::App& command, std::string& target) {
    command.add_option("-o,--output", target, "File to write")->required()->check(RefuseStdout)->option_text("FILE");
}

void AddCompile(CLI::App& app, int& code) {
    const auto options = std::make_shared<CompileOptions>();
    CLI::App* const command = app.add_subcommand("compile", "Write a definition in a form that loads without parsing");
    AddDefinitionSource(*command, options->definition);
    AddTarget(*command, options->target);
    command->callback([options, &code] { code = RunCompile(*options); });
}

void AddImport(CLI::App& app, int& code) {
    const auto options = std::make_shared<ImportOptions>();
    CLI::App* const command =
        app.add_subcommand("import", "Write a definition and CSV files into one file, a snapshot");
    command->add_option("DEFINITION", options->definition, "Definition file or compiled definition")->required();
    AddFolders(*command, options->folders)->required();
    AddEncoding(*command, options->encoding);
    command
        ->add_option("--dataset", options->datasets,
                     "Save the tables with a file in FOLDER a second time, as the dataset NAME; may be repeated")
        ->option_text("NAME=FOLDER")
        ->allow_extra_args(false);
    AddTarget(*command, options->target);
    command->add_flag("--compress", options->compress, "Compress the snapshot");
    command->add_flag("--keep-going", options->keep_going, "Write the snapshot without what was rejected");
    AddKey(*command, options->key);
    command->callback([options, &code] { code = RunImport(*options); });
}

void AddInfo(CLI::App& app, int& code) {
    const auto options = std::make_shared<InfoOptions>();
    CLI::App* const command = app.add_subcommand("info", "Tell what a snapshot or a compiled definition holds");
    command->add_option("FILE", options->file, "Snapshot or compiled definition")->required();
    command->add_flag("--tables", options->tables, "Print the list of a snapshot's tables only");
    AddOutputForm(*command, options->form);
    command->callback([options, &code] { code = RunInfo(*options); });
}

void AddCompression(CLI::App& app, int& code, const char* name, const char* help, int (*run)(const CompressOptions&)) {
    const auto options = std::make_shared<CompressOptions>();
    CLI::App* const command = app.add_subcommand(name, help);
    command->add_option("SOURCE", options->source, "File to read")->required();
    command->add_option("TARGET", options->target, "File to write")->required()->check(RefuseStdout);
    command->callback([options, run, &code] { code = run(*options); });
}

} // namespace

void AddFileCommands(CLI::App& app, int& code) {
    AddCompile(app, code);
    AddImport(app, code);
    AddInfo(app, code);
    AddCompression(app, code, "compress", "Write a file as a zlib stream, as snapshots are compressed", RunCompress);
    AddCompression(app, code, "decompress", "Write what a zlib stream holds", RunDecompress);
}

} // namespace Kestrona::Tool
