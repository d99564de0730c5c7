// Implements: ZshScript. A function for each command.
#include "shell/completion_script.h"
#include "shell/quoted.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <string_view>

namespace Kestrona::Tool {
namespace {

using Value = CommandArgument::Value;

/// A text whose signs do not divide what `_arguments` takes.
std::string ZshHelp(std::string_view help) {
    std::string text;
    for (const char c : help) {
        text += std::string_view("[]:\\").find(c) != std::string_view::npos ? std::string("\\") + c : std::string(1, c);
    }
    return text;
}

/// What `_arguments` takes behind the name: what the value is.
std::string ZshValue(const CommandArgument& argument) {
    const std::string word = ZshHelp(argument.word);
    if (!argument.choices.empty()) {
        return fmt::format(":{}:({})", word, fmt::join(argument.choices, " "));
    }
    switch (argument.value) {
    case Value::None:
        return "";
    case Value::File:
        return ':' + word + ":_files";
    case Value::Folder:
        return ':' + word + ":_files -/";
    case Value::Text:
        break;
    }
    return ':' + word + ": ";
}

std::string ZshArguments(const CommandNode& node) {
    std::string text;
    for (const CommandArgument& option : node.options) {
        for (const std::string& name : option.names) {
            text += " \\\n        " + Quoted(fmt::format("{}{}[{}]{}", option.repeats ? "*" : "", name,
                                                         ZshHelp(option.help), ZshValue(option)));
        }
    }
    for (const CommandArgument& argument : node.arguments) {
        const std::string value = ZshValue(argument);
        text += " \\\n        " + Quoted(argument.repeats ? "*" + value : (argument.required ? "" : ":") + value);
    }
    return text;
}

std::string ZshFunction(const CommandNode& node, const std::string& name, const CommandNode& tool) {
    std::string text;
    std::string names;
    std::string calls;
    for (const CommandNode& command : node.commands) {
        const std::string inner = name + '_' + command.name;
        text += ZshFunction(command, inner, tool);
        names += command.hidden ? "" : " " + Quoted(command.name + ':' + ZshHelp(command.help));
        calls += fmt::format("        {}) {} ;;\n", command.name, inner);
    }
    const std::string general = &node == &tool ? "" : " \"${_kestrona_general[@]}\"";
    if (node.commands.empty()) {
        return text + fmt::format("{}() {{\n    _arguments -s{}{}\n}}\n\n", name, general, ZshArguments(node));
    }
    return text + fmt::format("{0}() {{\n    local curcontext=$curcontext context state state_descr line\n    typeset "
                              "-A opt_args\n    local -a commands=({1})\n"
                              "    _arguments -C -s{2}{3} \\\n        '1:command:->command' '*::argument:->argument'\n"
                              "    case $state in\n    command) _describe command commands ;;\n"
                              "    argument)\n        case $line[1] in\n{4}        esac\n        ;;\n    esac\n}}\n\n",
                              name, names, general, ZshArguments(node), calls);
}

} // namespace

std::string ZshScript(const CommandNode& tool) {
    CommandNode general;
    for (const CommandArgument& option : tool.options) {
        if (option.names.front() == "--color" || option.names.front() == "--wide") {
            general.options.push_back(option);
        }
    }
    return "#compdef kestrona\n# Completes command lines of kestrona in zsh.\n\ntypeset -ga _kestrona_general=(" +
           ZshArguments(general) + ")\n\n" + ZshFunction(tool, "_kestrona", tool) + "_kestrona \"$@\"\n";
}

} // namespace Kestrona::Tool
