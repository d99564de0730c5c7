// Implements: FishScript. A line for each thing that can stand somewhere.
#include "shell/completion_script.h"
#include "shell/quoted.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <string_view>

namespace Kestrona::Tool {
namespace {

using Value = CommandArgument::Value;

std::string FishOption(const CommandArgument& option, const std::string& condition) {
    std::string line = "complete -c kestrona" + condition;
    for (const std::string& name : option.names) {
        line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    }
    if (!option.choices.empty()) {
        line += " -x -a " + Quoted(fmt::format("{}", fmt::join(option.choices, " ")));
    } else if (option.value == Value::Folder) {
        line += " -x -a '(__fish_complete_directories)'";
    } else if (option.value == Value::File) {
        line += " -r -F";
    } else if (option.value == Value::Text) {
        line += " -x";
    }
    return line + " -d " + Quoted(option.help) + '\n';
}

/// A word that is the name of an inner command, too, does not stand for this one behind the outer one.
std::string FishSeen(const CommandNode& parent, const CommandNode& command, const std::string& seen) {
    std::string condition = (seen.empty() ? "" : seen + "; and ") + "__fish_seen_subcommand_from " + command.name;
    for (const CommandNode& other : parent.commands) {
        for (const CommandNode& inner : other.commands) {
            if (inner.name == command.name) {
                condition += "; and not __fish_seen_subcommand_from " + other.name;
            }
        }
    }
    return condition;
}

std::string FishLines(const CommandNode& node, const std::string& seen) {
    std::string text;
    std::string names;
    for (const CommandNode& command : node.commands) {
        names += ' ' + command.name;
    }
    const std::string before = names.empty() ? "" : fmt::format("; and not __fish_seen_subcommand_from{}", names);
    const std::string condition = seen.empty() ? "" : " -n " + Quoted(seen);
    for (const CommandArgument& option : node.options) {
        text += FishOption(option, condition);
    }
    for (const CommandNode& command : node.commands) {
        const std::string first = seen.empty() ? "__fish_use_subcommand" : seen + before;
        if (!command.hidden) {
            text += fmt::format("complete -c kestrona -n {} -f -a {} -d {}\n", Quoted(first), command.name,
                                Quoted(command.help));
        }
        text += FishLines(command, FishSeen(node, command, seen));
    }
    for (const CommandArgument& argument : node.arguments) {
        if (!argument.choices.empty()) {
            text += fmt::format("complete -c kestrona{} -f -a '{}'\n", condition, fmt::join(argument.choices, " "));
        }
    }
    return text;
}

} // namespace

std::string FishScript(const CommandNode& tool) {
    return "# Completes command lines of kestrona in fish.\n" + FishLines(tool, "");
}

} // namespace Kestrona::Tool
