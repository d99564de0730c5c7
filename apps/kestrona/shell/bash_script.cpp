// Implements: BashScript. The path of the command comes first, then what fits behind the last word.
#include "shell/completion_script.h"
#include "shell/quoted.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <string_view>

namespace Kestrona::Tool {
namespace {

using Value = CommandArgument::Value;

std::string OptionNames(const CommandNode& node, const CommandNode& tool) {
    std::string names;
    for (const auto* options : {&node.options, &tool.options}) {
        for (const CommandArgument& option : *options) {
            const bool is_twice = options == &tool.options && option.names.front() == "-h";
            if (!is_twice || &node == &tool) {
                names.append(names.empty() ? "" : " ").append(fmt::format("{}", fmt::join(option.names, " ")));
            }
        }
        if (&node == &tool) {
            break;
        }
    }
    return names;
}

/// The lines of `case` for the options that want a value.
std::string BashValues(const CommandNode& node) {
    std::string lines;
    for (const CommandArgument& option : node.options) {
        const std::string names = fmt::format("{}", fmt::join(option.names, "|"));
        if (!option.choices.empty()) {
            lines += fmt::format("            {}) words='{}'; kind=words ;;\n", names, fmt::join(option.choices, " "));
        } else if (option.value == Value::File || option.value == Value::Folder) {
            lines +=
                fmt::format("            {}) kind={} ;;\n", names, option.value == Value::File ? "files" : "folders");
        } else if (option.value == Value::Text) {
            lines += fmt::format("            {}) kind=none ;;\n", names);
        }
    }
    return lines;
}

std::string BashCase(const CommandNode& node, const std::string& path, const CommandNode& tool) {
    std::string words = CommandNames(node);
    for (const CommandArgument& argument : node.arguments) {
        words += words.empty() || argument.choices.empty() ? "" : " ";
        words += fmt::format("{}", fmt::join(argument.choices, " "));
    }
    const std::string values = BashValues(node);
    std::string text =
        fmt::format("    '{}')\n        words='{}'; options='{}'\n", path, words, OptionNames(node, tool));
    if (!values.empty()) {
        text += fmt::format("        case $last in\n{}        esac\n", values);
    }
    text += "        ;;\n";
    for (const CommandNode& command : node.commands) {
        text += BashCase(command, path.empty() ? command.name : path + ' ' + command.name, tool);
    }
    return text;
}

/// All paths of commands, one a line of `case`.
std::string BashPaths(const CommandNode& node, const std::string& path) {
    std::string text;
    for (const CommandNode& command : node.commands) {
        const std::string inner = path.empty() ? command.name : path + ' ' + command.name;
        text += (text.empty() ? "" : "|") + Quoted(inner);
        const std::string deeper = BashPaths(command, inner);
        text += (deeper.empty() ? "" : "|") + deeper;
    }
    return text;
}

constexpr std::string_view kBashFrame = R"(# Completes command lines of kestrona in bash.
_kestrona() {{
    local current=${{COMP_WORDS[COMP_CWORD]}} last=${{COMP_WORDS[COMP_CWORD-1]}}
    local path='' words='' options='' kind=auto i
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case "${{path:+$path }}${{COMP_WORDS[i]}}" in
        {0}) path="${{path:+$path }}${{COMP_WORDS[i]}}" ;;
        esac
    done
    case $path in
{1}    esac
    case $last in
{2}    esac
    if [[ $kind == auto && $current == -* ]]; then
        words=$options
        kind=words
    elif [[ $kind == auto && -n $words ]]; then
        kind=words
    fi
    local IFS=$' \t\n'
    case $kind in
    words) COMPREPLY=($(compgen -W "$words" -- "$current")) ;;
    folders) IFS=$'\n'; COMPREPLY=($(compgen -d -- "$current")); compopt -o filenames ;;
    none) COMPREPLY=() ;;
    *) IFS=$'\n'; COMPREPLY=($(compgen -f -- "$current")); compopt -o filenames ;;
    esac
}}
complete -F _kestrona kestrona
)";

} // namespace

std::string BashScript(const CommandNode& tool) {
    const std::string general = BashValues(tool);
    return fmt::format(kBashFrame, BashPaths(tool, ""), BashCase(tool, "", tool), general);
}

} // namespace Kestrona::Tool
