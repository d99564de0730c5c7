// The examples of the expression language's document are run.
#include "tool/run_tool.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <optional>

namespace Kestrona::Tool {
namespace {

constexpr const char* kDefinition = R"(format Orders {
    key Number
    field Number          : INTEGER | UNIQUE
    field Quantity        : INTEGER
    field Price           : REAL
    field Code length 20  : TEXT
    field Name length 20  : TEXT
    field Total           : REAL | EVALUATE "{#Quantity} * {#Price}"
}
)";

struct Example {
    std::string expression;
    std::string value;
};

/// The text between two backquotes at the start, and what follows; a bar of the text is written "\|".
std::optional<std::string> TakeCode(std::string& line) {
    if (!line.starts_with("| `")) {
        return std::nullopt;
    }
    const std::size_t end = line.find("` |", 3);
    if (end == std::string::npos) {
        return std::nullopt;
    }
    std::string code = line.substr(3, end - 3);
    for (std::size_t at = code.find("\\|"); at != std::string::npos; at = code.find("\\|")) {
        code.erase(at, 1);
    }
    line.erase(0, end + 2);
    return code;
}

/// The rows of all tables with the heading "expression | value".
std::vector<Example> ReadExamples() {
    std::vector<Example> examples;
    std::ifstream document(SourcePath("docs/expression-language.md"));
    bool inside = false;
    for (std::string line; std::getline(document, line);) {
        inside = line.starts_with("| expression | value |") || (inside && line.starts_with("|"));
        const std::optional<std::string> expression = inside ? TakeCode(line) : std::nullopt;
        const std::optional<std::string> value = expression ? TakeCode(line) : std::nullopt;
        EXPECT_EQ(expression.has_value(), value.has_value()) << line;
        if (value) {
            examples.push_back({*expression, *value});
        }
    }
    return examples;
}

TEST(ExpressionDocument, ItsExamplesHaveTheValuesThatItGives) {
    const std::vector<Example> examples = ReadExamples();
    ASSERT_GT(examples.size(), 90U);
    const std::string folder = FreshFolder("document");
    WriteFile(folder + "/a.ksdef", kDefinition);
    WriteFile(folder + "/Orders.csv", "Number,Quantity,Price,Code,Name\n7,12,2.5,12.5,bolt M8\n");
    std::vector<std::string> arguments{"show", folder + "/a.ksdef", "--data", folder, "Orders", "-o", "jsonl"};
    for (std::size_t i = 0; i < examples.size(); ++i) {
        if (examples[i].value == "error") {
            const ToolRun run =
                RunTool({"eval", folder + "/a.ksdef", "--data", folder, "Orders", "--", examples[i].expression});
            EXPECT_EQ(run.exit_code, 2) << examples[i].expression << '\n' << run.out << run.err;
            continue;
        }
        arguments.insert(arguments.end(), {"--add", "E" + std::to_string(i) + "=" + examples[i].expression});
    }
    const ToolRun run = RunTool(arguments);
    ASSERT_EQ(run.exit_code, 0) << run.err;
    const auto row = nlohmann::json::parse(run.out);
    for (std::size_t i = 0; i < examples.size(); ++i) {
        if (examples[i].value != "error") {
            const auto& shown = row["E" + std::to_string(i)];
            // A number that JSON does not have is written as a text.
            const bool bare = shown.is_string() && examples[i].value[0] != '"';
            EXPECT_EQ(bare ? shown.get<std::string>() : shown.dump(), examples[i].value) << examples[i].expression;
        }
    }
    std::filesystem::remove_all(folder);
}

} // namespace
} // namespace Kestrona::Tool
