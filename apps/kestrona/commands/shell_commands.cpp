#include "commands/shell_commands.h"

#include "commands/choice.h"
#include "commands/command_options.h"
#include "output/text_output.h"
#include "shell/command_tree.h"
#include "shell/completion_script.h"
#include "shell/man_page.h"

#include <CLI/CLI.hpp>

#include <map>
#include <memory>
#include <string>

namespace Kestrona::Tool {
namespace {

enum class Shell {
    Bash,
    Zsh,
    Fish
};

struct ShellOptions {
    Shell shell = Shell::Bash;
    std::string file; ///< Empty for stdout.
};

const std::map<std::string, Shell>& ShellNames() {
    static const std::map<std::string, Shell> names{{"bash", Shell::Bash}, {"zsh", Shell::Zsh}, {"fish", Shell::Fish}};
    return names;
}

std::string CompletionScript(const CommandNode& tool, Shell shell) {
    switch (shell) {
    case Shell::Bash:
        break;
    case Shell::Zsh:
        return ZshScript(tool);
    case Shell::Fish:
        return FishScript(tool);
    }
    return BashScript(tool);
}

CLI::App* AddHidden(CLI::App& app, const char* name, const char* help, std::string& file) {
    CLI::App* const command = app.add_subcommand(name, help)->group("");
    AddFile(*command, file);
    return command;
}

} // namespace

void AddShellCommands(CLI::App& app, int& code) {
    const auto options = std::make_shared<ShellOptions>();
    CLI::App* const completion =
        AddHidden(app, "completion", "Write a script that completes command lines of this tool", options->file);
    completion->add_option("SHELL", options->shell, "bash, zsh or fish")->required()->transform(OneOf(ShellNames()));
    completion->callback(
        [&app, options, &code] { code = WriteText(CompletionScript(ReadTree(app), options->shell), options->file); });
    CLI::App* const man = AddHidden(app, "man", "Write the manual page of this tool", options->file);
    man->callback([&app, options, &code] { code = WriteText(ManPage(ReadTree(app)), options->file); });
}

} // namespace Kestrona::Tool
