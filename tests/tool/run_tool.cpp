#include "tool/run_tool.h"

#include "tool/own_path.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace Kestrona::Tool {
namespace {

std::string Quoted(const std::string& argument) {
    std::string text = "'";
    for (const char c : argument) {
        text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return text + '\'';
}

bool HasCode(const std::string& line) {
    const std::size_t bracket = line.rfind(" [");
    return line.ends_with(']') && bracket != std::string::npos && line.find(' ', bracket + 1) == std::string::npos;
}

void ExpectCodesAndHints(const std::string& messages) {
    std::istringstream lines(messages);
    bool has_messages = false;
    for (std::string line; std::getline(lines, line);) {
        const bool is_message = !line.starts_with(' ') && (line.find(": error: ") != std::string::npos ||
                                                           line.find(": warning: ") != std::string::npos);
        has_messages = has_messages || is_message;
        EXPECT_TRUE(!is_message || HasCode(line)) << line;
    }
    const bool has_advice =
        messages.find("\n  hint: ") != std::string::npos || messages.find("; expected ") != std::string::npos;
    EXPECT_EQ(has_messages, has_advice) << messages;
}

} // namespace

ToolRun RunTool(const std::vector<std::string>& arguments, const std::string& input) {
    const std::string folder = FreshFolder("run");
    WriteFile(folder + "/in", input);
    std::string command = Quoted(KESTRONA_TOOL);
    for (const std::string& argument : arguments) {
        command += ' ' + Quoted(argument);
    }
    command += " >" + Quoted(folder + "/out") + " 2>" + Quoted(folder + "/err") + " <" + Quoted(folder + "/in");
    const int status = std::system(command.c_str());
    ToolRun run{WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile(folder + "/out"), ReadFile(folder + "/err")};
    std::filesystem::remove_all(folder);
    ExpectCodesAndHints(run.err);
    return run;
}

std::string FreshFolder(const std::string& name) {
    static int number = 0;
    const std::string path = OwnPath(name + std::to_string(++number));
    std::filesystem::remove_all(path);
    std::filesystem::create_directories(path);
    return path;
}

std::string ReadFile(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

void WriteFile(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

std::string SourcePath(const std::string& relative) {
    return std::string(KESTRONA_SOURCE_DIR) + "/" + relative;
}

} // namespace Kestrona::Tool
