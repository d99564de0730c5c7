#pragma once

#include <kestrona/unicode.h>

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

// Files that tests write and read.
namespace Kestrona::Testing {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, FileCloser>;

inline File FileOf(const std::string& bytes) {
    File file(std::tmpfile());
    std::fwrite(bytes.data(), 1, bytes.size(), file.get());
    std::rewind(file.get());
    return file;
}

// All that was written to the file.
inline std::string BytesOf(std::FILE* file) {
    std::string bytes(static_cast<std::size_t>(std::ftell(file)), '\0');
    std::rewind(file);
    EXPECT_EQ(std::fread(bytes.data(), 1, bytes.size(), file), bytes.size());
    return bytes;
}

// A fresh folder that is gone with its content at the end.
class ScratchFolder {
public:
    ScratchFolder() { EXPECT_NE(mkdtemp(path_.data()), nullptr); }

    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    ~ScratchFolder() { std::filesystem::remove_all(path_); }

    [[nodiscard]] std::string Path(const std::string& name = {}) const { return path_ + "/" + name; }

    [[nodiscard]] std::wstring WidePath(const std::string& name) const { return FromUtf8(Path(name)); }

    void Write(const std::string& name, const std::string& bytes) const {
        std::ofstream(Path(name), std::ios::binary) << bytes;
    }

    [[nodiscard]] std::string Read(const std::string& name) const {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

private:
    std::string path_ = testing::TempDir() + "kestrona_XXXXXX";
};

// Whether a script of tests/oracles ends well.
inline bool RunOracle(const std::string& script, const std::string& arguments) {
    const std::string command = "python3 '" KESTRONA_SOURCE_DIR "/tests/oracles/" + script + "' " + arguments;
    return std::system(command.c_str()) == 0;
}

} // namespace Kestrona::Testing
