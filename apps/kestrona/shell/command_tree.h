#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

/// \file
/// The command line that the tool understands, as data.

namespace Kestrona::Tool {

/// An option, a flag, or an argument without a name.
struct CommandArgument {
    enum class Value {
        None, ///< A flag.
        Text,
        File,
        Folder
    };

    std::vector<std::string> names; ///< With their dashes; empty for an argument without a name.
    std::string word;               ///< What stands for the value in the help.
    std::string help;
    std::vector<std::string> choices; ///< All values that there are; empty for any.
    Value value = Value::None;
    bool required = false;
    bool repeats = false;
};

struct CommandNode {
    std::string name;
    std::string help;
    std::string footer;
    bool hidden = false;
    std::vector<CommandArgument> options;
    std::vector<CommandArgument> arguments;
    std::vector<CommandNode> commands;
};

/// Describes an application and all of its commands.
[[nodiscard]] CommandNode ReadTree(CLI::App& app);

/// The names of the commands, divided by blanks; the hidden ones are left out.
[[nodiscard]] std::string CommandNames(const CommandNode& node);

} // namespace Kestrona::Tool
