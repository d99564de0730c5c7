#include "tool/table_folder.h"

#include <filesystem>
#include <regex>

namespace Kestrona::Tool {

TableFolder::TableFolder(const std::string& definition, const std::vector<std::pair<std::string, std::string>>& files)
    : folder_(FreshFolder("tables")),
      definition_(folder_ + "/plant.ksdef") {
    WriteFile(definition_, definition);
    for (const auto& [name, content] : files) {
        Write(name, content);
    }
}

TableFolder::~TableFolder() {
    std::filesystem::remove_all(folder_);
}

ToolRun TableFolder::Run(const std::string& command, const Arguments& more) const {
    return RunWithoutRecords(command, Joined({"--data", folder_}, more));
}

ToolRun TableFolder::RunWithoutRecords(const std::string& command, const Arguments& more) const {
    return RunTool(Joined({command, definition_}, more));
}

std::vector<std::string> Joined(std::vector<std::string> first, const std::vector<std::string>& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

std::string WithoutCodes(const std::string& messages) {
    static const std::regex code(" \\[(KES-[0-9]+|[a-z-]+)\\](?=\n|$)");
    return std::regex_replace(messages, code, "");
}

} // namespace Kestrona::Tool
