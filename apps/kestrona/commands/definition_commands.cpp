#include "commands/definition_commands.h"

#include "commands/choice.h"
#include "commands/command_options.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace Kestrona::Tool {
namespace {

void AddCheck(CLI::App& app, int& code) {
    const auto options = std::make_shared<CheckOptions>();
    CLI::App* const command = app.add_subcommand("check", "Tell what is wrong with a definition");
    AddDefinitionSource(*command, options->definition);
    command->add_option("-o,--output", options->form, "Output form: text, json or sarif")
        ->transform(OneOf(Lint::ReportFormNames()))
        ->option_text("FORM");
    command->add_flag("--strict", options->strict, "Give exit code 1 for warnings too");
    command->callback([options, &code] { code = RunCheck(*options); });
}

void AddSchema(CLI::App& app, int& code) {
    const auto options = std::make_shared<SchemaOptions>();
    CLI::App* const command =
        app.add_subcommand("schema", "List the formats of a definition, the fields of one, or all about one field");
    AddDefinition(*command, options->definition);
    command->add_option("TABLE", options->table, "Format whose fields to list");
    command->add_option("FIELD", options->field, "Field of that format to describe");
    AddOutputForm(*command, options->form);
    command->callback([options, &code] { code = RunSchema(*options); });
}

void AddGraph(CLI::App& app, int& code) {
    const auto options = std::make_shared<GraphOptions>();
    CLI::App* const command = app.add_subcommand("graph", "Draw the references between the formats of a definition");
    AddDefinition(*command, options->definition);
    AddFile(*command, options->file);
    CLI::Option* const svg = command->add_flag("--svg", options->svg, "Write a picture (SVG); the default");
    command->add_flag("--dot", options->dot, "Write the graph for Graphviz; the default for .dot and .gv files")
        ->excludes(svg);
    command->callback([options, &code] { code = RunGraph(*options); });
}

void AddDocs(CLI::App& app, int& code) {
    const auto options = std::make_shared<DocsOptions>();
    CLI::App* const command = app.add_subcommand("docs", "Write a data dictionary of a definition (Markdown)");
    AddDefinition(*command, options->definition);
    AddFile(*command, options->file);
    command->callback([options, &code] { code = RunDocs(*options); });
}

void AddExtract(CLI::App& translate, int& code) {
    const auto options = std::make_shared<TranslateExtractOptions>();
    CLI::App* const command =
        translate.add_subcommand("extract", "Write the lists KSSERVER.LST and KS_PDB.LST for a translator");
    AddDefinitionSource(*command, options->definition);
    command->add_option("-o,--output", options->folder, "Folder to write to; the current one without it")
        ->option_text("FOLDER");
    command->callback([options, &code] { code = RunTranslateExtract(*options); });
}

void AddApply(CLI::App& translate, int& code) {
    const auto options = std::make_shared<TranslateApplyOptions>();
    CLI::App* const command = translate.add_subcommand(
        "apply", "Show a definition's texts as filled lists translate them, and the entries that are of no use");
    AddDefinitionSource(*command, options->definition);
    command->add_option("LIST", options->lists, "List files")->required();
    AddOutputForm(*command, options->form);
    command->callback([options, &code] { code = RunTranslateApply(*options); });
}

} // namespace

void AddDefinitionCommands(CLI::App& app, int& code) {
    AddCheck(app, code);
    AddSchema(app, code);
    AddGraph(app, code);
    AddDocs(app, code);
    CLI::App* const translate = app.add_subcommand("translate", "List a definition's texts, or apply filled lists");
    translate->require_subcommand(1);
    AddExtract(*translate, code);
    AddApply(*translate, code);
}

} // namespace Kestrona::Tool
