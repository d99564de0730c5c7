#include "commands/choice.h"
#include "commands/definition_commands.h"
#include "commands/diff_command.h"
#include "commands/explain_command.h"
#include "commands/export_command.h"
#include "commands/file_commands.h"
#include "commands/help.h"
#include "commands/key_commands.h"
#include "commands/record_commands.h"
#include "commands/shell_commands.h"
#include "exit_codes.h"
#include "output/message.h"
#include "output/terminal.h"
#include "output/text_output.h"

#include <kestrona/unicode.h>
#include <kestrona/version.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <new>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace Kestrona::Tool;

void AddTerminalOptions(CLI::App& app) {
    app.fallthrough(); // so that they may stand behind the command, too
    app.add_option("--color", Terminal().color, "Colours: auto (on a terminal without NO_COLOR), always or never")
        ->transform(OneOf(ColorChoiceNames()))
        ->option_text("WHEN");
    app.add_flag("--wide", Terminal().wide, "Print tables whole, even if they are wider than the terminal");
}

/// The command that was named, "" for none.
std::string CommandOf(const CLI::App& app) {
    std::string path;
    for (const CLI::App* command = &app; !command->get_subcommands().empty();) {
        command = command->get_subcommands().front();
        path += ' ' + command->get_name();
    }
    return path;
}

/// What cannot be understood counts before what is missing, which it was probably meant to be.
std::string WhatIsWrong(const CLI::App& app, const CLI::ParseError& error) {
    const std::vector<std::string> unknown = app.remaining(true);
    const bool is_told = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::RequiredError) ||
                         error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError);
    if (!is_told || unknown.empty()) {
        return error.what();
    }
    return app.get_subcommands().empty() ? fmt::format("there is no command or option '{}'", unknown.front())
                                         : fmt::format("'{}' was not expected", unknown.front());
}

Code CodeOf(const CLI::App& app, const CLI::ParseError& error) {
    const bool is_unknown = !app.remaining(true).empty();
    switch (static_cast<CLI::ExitCodes>(error.get_exit_code())) {
    case CLI::ExitCodes::RequiredError:
        return is_unknown ? Code::UnknownOption : Code::MissingArgument;
    case CLI::ExitCodes::ExtrasError:
        return Code::UnknownOption;
    default:
        return Code::BadArgument;
    }
}

/// Writes the help or the version that was asked for.
int TellAsked(const CLI::App& app, const CLI::ParseError& error) {
    std::ostringstream text;
    app.exit(error, text, text);
    return WriteText(text.str(), "");
}

int TellUsage(const CLI::App& app, const CLI::ParseError& error) {
    TellError(CodeOf(app, error), Hint{fmt::format("See 'kestrona{} --help'.", CommandOf(app))}, "{}",
              WhatIsWrong(app, error));
    return kExitUsage;
}

// TellError would ask for memory.
void TellOutOfMemory() {
    const CodeEntry& entry = EntryOf(Code::OutOfMemory);
    std::fprintf(stderr, "kestrona: error: not enough memory [KES-%04d]\n  hint: %.*s\n", entry.number,
                 static_cast<int>(entry.hint.size()), entry.hint.data());
}

int Run(int argc, char** argv) {
    CLI::App app{"Looks at plant definitions and their data.", "kestrona"};
    app.require_subcommand(1);
    app.set_version_flag("--version", KESTRONA_VERSION);
    AddTerminalOptions(app);
    int code = kExitGood;
    AddDefinitionCommands(app, code);
    AddRecordCommands(app, code);
    AddFileCommands(app, code);
    AddExportCommand(app, code);
    AddDiffCommand(app, code);
    AddKeyCommands(app, code);
    AddExplainCommand(app, code);
    AddShellCommands(app, code);
    AddHelp(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return error.get_exit_code() == 0 ? TellAsked(app, error) : TellUsage(app, error);
    }
    return code;
}

} // namespace

int main(int argc, char** argv) {
    // A reader that stops early shows as a failed write.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return Run(argc, argv);
    } catch (const std::bad_alloc&) {
        TellOutOfMemory();
    } catch (const std::exception& error) {
        TellError(Code::Unexpected, "{}", error.what());
    } catch (const wchar_t* text) {
        TellError(Code::Unexpected, "{}", Kestrona::ToUtf8(text));
    }
    return kExitUnreadableInput;
}
