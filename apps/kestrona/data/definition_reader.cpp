#include "data/definition_reader.h"

#include <iostream>
#include <iterator>

namespace Kestrona::Tool {

std::optional<std::string> ReadDefinition(const std::string& path, bool is_command_line) {
    if (path != kStdin || !is_command_line) {
        return Host::ReadDefinitionFile(path);
    }
    static const std::string all{std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
    return all;
}

} // namespace Kestrona::Tool
