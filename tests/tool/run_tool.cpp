#include "tool/run_tool.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace Kestrona::Tool {

std::string FreshFolder(const std::string& name) {
    static int number = 0;
    const std::string path =
        testing::TempDir() + "kestrona-" + std::to_string(getpid()) + "-" + name + std::to_string(++number);
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

} // namespace Kestrona::Tool
