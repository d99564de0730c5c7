#pragma once

#include "tool/run_tool.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace Kestrona::Tool {

/// A definition, and files with records beside it, in a folder of their own.
class TableFolder : public testing::Test {
protected:
    using Arguments = std::vector<std::string>;

    /// `files`: names and contents.
    TableFolder(const std::string& definition, const std::vector<std::pair<std::string, std::string>>& files);
    ~TableFolder() override;

    void Write(const std::string& name, const std::string& content) const { WriteFile(folder_ + "/" + name, content); }

    /// Runs a command on the definition and its records.
    [[nodiscard]] ToolRun Run(const std::string& command, const Arguments& more) const;
    /// Runs a command on the definition alone.
    [[nodiscard]] ToolRun RunWithoutRecords(const std::string& command, const Arguments& more) const;

    std::string folder_;
    std::string definition_;
};

/// The arguments of both, the first ones first.
[[nodiscard]] std::vector<std::string> Joined(std::vector<std::string> first, const std::vector<std::string>& second);

/// Takes the codes away, " [KES-0104]" or that of a rule.
[[nodiscard]] std::string WithoutCodes(const std::string& messages);

} // namespace Kestrona::Tool
