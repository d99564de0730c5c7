#include <kestrona/safe_file.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

namespace Kestrona {

namespace {

namespace fs = std::filesystem;

class SafeFileTest : public testing::Test {
protected:
    SafeFileTest() {
        EXPECT_NE(mkdtemp(folder.data()), nullptr);
        std::ofstream(Path("old")) << "old";
        fs::permissions(Path("old"), fs::perms{0640});
        fs::create_directory(Path("sub"));
        fs::create_symlink("../old", Path("sub/link"));
        fs::create_symlink("link", Path("sub/link_to_link"));
        fs::create_symlink("new", Path("sub/dangling"));
    }

    ~SafeFileTest() override { fs::remove_all(folder); }

    [[nodiscard]] std::string Path(const std::string& name) const { return folder + "/" + name; }

    [[nodiscard]] std::string Read(const std::string& name) const {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    [[nodiscard]] mode_t Permissions(const std::string& name) const {
        return static_cast<mode_t>(fs::status(Path(name)).permissions());
    }

    // Files that are neither the old one nor links: drafts.
    [[nodiscard]] std::vector<std::string> Drafts() const {
        std::vector<std::string> drafts;
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            if (entry.symlink_status().type() == fs::file_type::regular && entry.path().filename() != "old") {
                drafts.push_back(entry.path().filename());
            }
        }
        return drafts;
    }

    bool Replace(const std::string& name, const std::string& text) const {
        SafeFile file(FromUtf8(Path(name)));
        return file.IsOpen() && std::fputs(text.c_str(), file.File()) >= 0 && file.Commit() && !file.IsOpen() &&
               !file.Commit() && file.Error().empty();
    }

    std::string folder = testing::TempDir() + "kestrona_XXXXXX";
};

// How a process of its own ends that runs the action.
int StatusOf(const std::function<bool()>& action) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(action() ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    return status;
}

TEST_F(SafeFileTest, ACommittedFileTakesThePlaceAndThePermissions) {
    std::string expected;
    for (const char* name : {"old", "sub/link", "sub/link_to_link"}) {
        expected += name;
        EXPECT_TRUE(Replace(name, expected)) << name;
        EXPECT_EQ(Read("old"), expected);
        EXPECT_EQ(Permissions("old"), 0640U) << name;
    }
    EXPECT_EQ(fs::read_symlink(Path("sub/link")), "../old");
    EXPECT_TRUE(Drafts().empty());
    const mode_t mask = umask(027);
    EXPECT_TRUE(Replace("sub/dangling", "new"));
    umask(mask);
    EXPECT_EQ(Read("sub/new"), "new");
    EXPECT_EQ(Permissions("sub/new"), 0640U);
}

TEST_F(SafeFileTest, AChangeOfTheCurrentFolderLeadsNowhereElse) {
    const fs::path before = fs::current_path();
    fs::current_path(folder);
    SafeFile file(L"old");
    fs::current_path(before);
    EXPECT_TRUE(file.Commit());
    EXPECT_EQ(Read("old"), "");
    EXPECT_TRUE(Drafts().empty());
}

TEST_F(SafeFileTest, WhateverFailsLeavesTheOldFile) {
    struct Case {
        const char* what;
        std::function<bool()> action;
        bool is_killed = false;
    };

    const std::wstring path = FromUtf8(Path("sub/link"));
    const auto fails_for_size = [&](std::size_t writes, std::size_t size) {
        constexpr rlimit kLimit{100000, 100000};
        std::signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &kLimit);
        SafeFile file(path);
        const std::string piece(size, 'x');
        for (std::size_t i = 0; i < writes; ++i) {
            std::fwrite(piece.data(), 1, size, file.File());
        }
        return !file.Commit() && file.Error() == L"File too large" && !file.IsOpen();
    };
    const Case cases[] = {
        {"small writes fail",
         [&] {
             return fails_for_size(50000, 7);
         }},
        {"a large write fails",
         [&] {
             return fails_for_size(1, 400000);
         }},
        {"the last flush fails",
         [&] {
             return fails_for_size(1, 100001);
         }},
        {"the folder goes",
         [&] {
             SafeFile file(FromUtf8(Path("gone/file")));
             const bool refused = !file.IsOpen() && !file.Commit() && file.Error() == L"No such file or directory";
             fs::create_directory(Path("gone"));
             SafeFile again(FromUtf8(Path("gone/file")));
             fs::remove_all(Path("gone"));
             return refused && again.IsOpen() && !again.Commit() && again.Error() == L"No such file or directory";
         }},
        {"the object goes",
         [&] {
             const SafeFile file(path);
             return std::fputs("half", file.File()) >= 0;
         }},
        {"the process goes",
         [&] {
             const SafeFile file(path);
             std::fputs("half", file.File());
             std::fflush(file.File());
             return raise(SIGKILL) == 0;
         },
         true},
    };
    for (const Case& c : cases) {
        const int status = StatusOf(c.action);
        EXPECT_EQ(Read("old"), "old") << c.what;
        if (c.is_killed) {
            EXPECT_TRUE(WIFSIGNALED(status)) << c.what;
            ASSERT_EQ(Drafts().size(), 1U);
            EXPECT_EQ(Drafts()[0].size(), std::string("old.XXXXXX").size());
        } else {
            EXPECT_EQ(status, 0) << c.what;
            EXPECT_TRUE(Drafts().empty()) << c.what;
        }
    }
}

TEST_F(SafeFileTest, WhatIsNoFileIsNotReplaced) {
    fs::create_symlink("loop", Path("sub/loop"));
    fs::permissions(Path("old"), fs::perms{0440});
    for (const auto& [path, error] : {std::pair{Path("sub"), L"Is a directory"},
                                      {std::string("/dev/null"), L"Operation not supported"},
                                      {Path("sub/loop"), L"Too many levels of symbolic links"},
                                      {std::string(), L"No such file or directory"},
                                      {Path("old"), L"Permission denied"}}) {
        if (path == Path("old") && geteuid() == 0) {
            continue; // no file is closed to root
        }
        SafeFile file(FromUtf8(path));
        EXPECT_FALSE(file.IsOpen()) << path;
        EXPECT_EQ(file.File(), nullptr);
        EXPECT_EQ(file.Error(), error) << path;
        EXPECT_FALSE(file.Commit());
    }
    EXPECT_TRUE(Drafts().empty());
}

} // namespace

} // namespace Kestrona
