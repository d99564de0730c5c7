#include "commands/record_commands.h"

#include "commands/command_options.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace Kestrona::Tool {
namespace {

void AddShow(CLI::App& app, int& code) {
    const auto options = std::make_shared<ShowOptions>();
    CLI::App* const command = app.add_subcommand("show", "Print the records of a format");
    AddRecordChoice(*command, options->records);
    command->add_option("--columns", options->columns, "Fields to print, divided by commas, in this order")
        ->delimiter(',')
        ->option_text("FIELD,...")
        ->allow_extra_args(false);
    command
        ->add_option("--add", options->added,
                     "Print a further column NAME with the value of EXPRESSION; may be repeated")
        ->option_text("NAME=EXPRESSION")
        ->allow_extra_args(false);
    AddCellStyle(*command, options->records.raw, options->records.text);
    command->callback([options, &code] { code = RunShow(*options); });
}

void AddEval(CLI::App& app, int& code) {
    const auto options = std::make_shared<EvalOptions>();
    CLI::App* const command = app.add_subcommand("eval", "Print an expression's value for each record of a format");
    AddRecordChoice(*command, options->records);
    command->add_option("EXPRESSION", options->expression, "Expression; put -- before one that begins with a minus")
        ->required();
    command->add_flag("--text", options->inside_of_text, "The expression is the inside of a text with fields in it");
    command->add_flag("--raw", options->records.raw, "Print the stored key; csv, json and jsonl do so");
    command->callback([options, &code] { code = RunEval(*options); });
}

void AddTrack(CLI::App& app, int& code) {
    const auto options = std::make_shared<TrackOptions>();
    CLI::App* const command =
        app.add_subcommand("track", "Find the way from a format to a field, and print the value there for each record");
    AddRecordChoice(*command, options->records);
    command->add_option("TARGET", options->target, "FORMAT.FIELD, or class:NAME for the nearest field of a class")
        ->required();
    command->add_flag("--lists", options->lists, "Go through lists and matrices, too");
    CLI::Option* const raw = command->add_flag("--raw", options->records.raw, "Print stored values in every form");
    command->add_flag("--text", options->records.text, "Print display texts in every form")->excludes(raw);
    command->callback([options, &code] { code = RunTrack(*options); });
}

} // namespace

void AddRecordCommands(CLI::App& app, int& code) {
    AddShow(app, code);
    AddEval(app, code);
    AddTrack(app, code);
}

} // namespace Kestrona::Tool
