#include "commands/command_options.h"
#include "commands/commands.h"
#include "commands/diff_command.h"
#include "commands/export_command.h"
#include "commands/file_commands.h"
#include "commands/key_commands.h"
#include "exit_codes.h"

#include <kestrona/unicode.h>
#include <kestrona/version.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <csignal>
#include <exception>

namespace {

using namespace Kestrona::Tool;

constexpr const char* kFooter = "Exit codes: 0 good, 1 findings, 2 usage, 3 unreadable input, 4 damaged input, "
                                "5 key wrong or missing.";

void AddFile(CLI::App& command, std::string& file) {
    command.add_option("-f,--file", file, "File to write; stdout without it")->option_text("FILE");
}

int Run(int argc, char** argv) {
    CLI::App app{"Looks at plant definitions and their data."};
    app.footer(kFooter);
    app.require_subcommand(1);
    app.set_version_flag("--version", KESTRONA_VERSION);
    int code = kExitGood;

    CheckOptions check;
    CLI::App* check_command = app.add_subcommand("check", "Tell what is wrong with a definition");
    AddDefinitionSource(*check_command, check.definition);
    check_command->add_option("-o,--output", check.form, "Output form: text, json or sarif")
        ->transform(CLI::CheckedTransformer(Lint::ReportFormNames(), CLI::ignore_case).description(""))
        ->option_text("FORM");
    check_command->add_flag("--strict", check.strict, "Give exit code 1 for warnings too");
    check_command->callback([&] { code = RunCheck(check); });

    SchemaOptions schema;
    CLI::App* schema_command =
        app.add_subcommand("schema", "List the formats of a definition, the fields of one, or all about one field");
    AddDefinition(*schema_command, schema.definition);
    schema_command->add_option("TABLE", schema.table, "Format whose fields to list");
    schema_command->add_option("FIELD", schema.field, "Field of that format to describe");
    AddOutputForm(*schema_command, schema.form);
    schema_command->callback([&] { code = RunSchema(schema); });

    GraphOptions graph;
    CLI::App* graph_command = app.add_subcommand("graph", "Draw the references between the formats of a definition");
    AddDefinition(*graph_command, graph.definition);
    AddFile(*graph_command, graph.file);
    CLI::Option* svg = graph_command->add_flag("--svg", graph.svg, "Write a picture (SVG); the default");
    graph_command->add_flag("--dot", graph.dot, "Write the graph for Graphviz; the default for .dot and .gv files")
        ->excludes(svg);
    graph_command->callback([&] { code = RunGraph(graph); });

    DocsOptions docs;
    CLI::App* docs_command = app.add_subcommand("docs", "Write a data dictionary of a definition (Markdown)");
    AddDefinition(*docs_command, docs.definition);
    AddFile(*docs_command, docs.file);
    docs_command->callback([&] { code = RunDocs(docs); });

    ShowOptions show;
    CLI::App* show_command = app.add_subcommand("show", "Print the records of a format");
    AddRecordChoice(*show_command, show.records);
    show_command->add_option("--columns", show.columns, "Fields to print, divided by commas, in this order")
        ->delimiter(',')
        ->option_text("FIELD,...")
        ->allow_extra_args(false);
    show_command
        ->add_option("--add", show.added, "Print a further column NAME with the value of EXPRESSION; may be repeated")
        ->option_text("NAME=EXPRESSION")
        ->allow_extra_args(false);
    CLI::Option* raw =
        show_command->add_flag("--raw", show.records.raw, "Print stored values; csv, json and jsonl do so");
    show_command->add_flag("--text", show.records.text, "Print display texts; table and markdown do so")->excludes(raw);
    show_command->callback([&] { code = RunShow(show); });

    EvalOptions eval;
    CLI::App* eval_command = app.add_subcommand("eval", "Print an expression's value for each record of a format");
    AddRecordChoice(*eval_command, eval.records);
    eval_command->add_option("EXPRESSION", eval.expression, "Expression; put -- before one that begins with a minus")
        ->required();
    eval_command->add_flag("--text", eval.inside_of_text, "The expression is the inside of a text with fields in it");
    eval_command->add_flag("--raw", eval.records.raw, "Print the stored key; csv, json and jsonl do so");
    eval_command->callback([&] { code = RunEval(eval); });

    TrackOptions track;
    CLI::App* track_command =
        app.add_subcommand("track", "Find the way from a format to a field, and print the value there for each record");
    AddRecordChoice(*track_command, track.records);
    track_command->add_option("TARGET", track.target, "FORMAT.FIELD, or class:NAME for the nearest field of a class")
        ->required();
    track_command->add_flag("--lists", track.lists, "Go through lists and matrices, too");
    CLI::Option* raw_track = track_command->add_flag("--raw", track.records.raw, "Print stored values in every form");
    track_command->add_flag("--text", track.records.text, "Print display texts in every form")->excludes(raw_track);
    track_command->callback([&] { code = RunTrack(track); });

    TranslateExtractOptions extract;
    TranslateApplyOptions apply;
    CLI::App* translate_command = app.add_subcommand("translate", "List a definition's texts, or apply filled lists");
    translate_command->require_subcommand(1);
    CLI::App* extract_command =
        translate_command->add_subcommand("extract", "Write the lists KSSERVER.LST and KS_PDB.LST for a translator");
    AddDefinitionSource(*extract_command, extract.definition);
    extract_command->add_option("-o,--output", extract.folder, "Folder to write to; the current one without it")
        ->option_text("FOLDER");
    extract_command->callback([&] { code = RunTranslateExtract(extract); });
    CLI::App* apply_command = translate_command->add_subcommand(
        "apply", "Show a definition's texts as filled lists translate them, and the entries that are of no use");
    AddDefinitionSource(*apply_command, apply.definition);
    apply_command->add_option("LIST", apply.lists, "List files")->required();
    AddOutputForm(*apply_command, apply.form);
    apply_command->callback([&] { code = RunTranslateApply(apply); });

    AddFileCommands(app, code);
    AddExportCommand(app, code);
    AddDiffCommand(app, code);
    AddKeyCommands(app, code);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kExitGood : kExitUsage;
    }
    return code;
}

} // namespace

int main(int argc, char** argv) {
    // A reader that stops early shows as a failed write.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        fmt::print(stderr, "kestrona: error: {}\n", error.what());
    } catch (const wchar_t* text) {
        fmt::print(stderr, "kestrona: error: {}\n", Kestrona::ToUtf8(text));
    }
    return kExitUnreadableInput;
}
