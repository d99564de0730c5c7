#include "shell/command_tree.h"

#include "commands/choice.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <sstream>

namespace Kestrona::Tool {
namespace {

constexpr std::array<std::string_view, 7> kFileWords{"DEFINITION", "FILE", "LIST", "NEW", "OLD", "SOURCE", "TARGET"};
constexpr std::string_view kFolderWord = "FOLDER";

std::vector<std::string> ChoicesOf(CLI::Option& option) {
    std::vector<std::string> choices;
    try {
        std::istringstream names(option.get_validator("choice")->get_description());
        for (std::string name; std::getline(names, name, kChoiceSeparator);) {
            choices.push_back(name);
        }
    } catch (const CLI::OptionNotFound&) {
        return {}; // takes any value
    }
    return choices;
}

CommandArgument::Value ValueOf(const CLI::Option& option, const std::string& word) {
    if (option.get_items_expected_max() == 0) {
        return CommandArgument::Value::None;
    }
    if (word == kFolderWord) {
        return CommandArgument::Value::Folder;
    }
    const bool is_file = std::ranges::find(kFileWords, word) != kFileWords.end();
    return is_file ? CommandArgument::Value::File : CommandArgument::Value::Text;
}

CommandArgument Describe(CLI::Option& option) {
    CommandArgument argument;
    for (const std::string& name : option.get_snames()) {
        argument.names.push_back('-' + name);
    }
    for (const std::string& name : option.get_lnames()) {
        argument.names.push_back("--" + name);
    }
    argument.word = option.get_positional() ? option.get_name(true) : option.get_option_text();
    argument.help = option.get_description();
    argument.choices = ChoicesOf(option);
    argument.value = ValueOf(option, argument.word);
    argument.required = option.get_required();
    argument.repeats = option.get_expected_max() > 1;
    return argument;
}

} // namespace

CommandNode ReadTree(CLI::App& app) {
    CommandNode node;
    node.name = app.get_name();
    node.help = app.get_description();
    node.footer = app.get_footer();
    node.hidden = app.get_group().empty();
    for (CLI::Option* const option : app.get_options()) {
        (option->get_positional() ? node.arguments : node.options).push_back(Describe(*option));
    }
    for (CLI::App* const command : app.get_subcommands({})) {
        node.commands.push_back(ReadTree(*command));
    }
    return node;
}

std::string CommandNames(const CommandNode& node) {
    std::string names;
    for (const CommandNode& command : node.commands) {
        if (!command.hidden) {
            names.append(names.empty() ? "" : " ").append(command.name);
        }
    }
    return names;
}

} // namespace Kestrona::Tool
