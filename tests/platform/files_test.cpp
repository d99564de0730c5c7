#include "platform/files.h"

#include "fixtures/scratch_files.h"
#include "platform/random.h"
#include "platform/wide_c_string.h"

#include <kestrona/safe_file.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>
#include <functional>
#include <set>

namespace Kestrona::Platform {
namespace {

namespace fs = std::filesystem;

class FilesTest : public ::testing::Test {
protected:
    std::wstring Path(const std::wstring& name) const { return folder_.WidePath({}) + name; }

    Testing::ScratchFolder folder_;
};

TEST_F(FilesTest, NamesReachTheSystemAsUtf8) {
    const std::wstring path = Path(L"Gr\xf6\xdf"
                                   L"e \x65e5\x672c \x1d11e.txt");
    EXPECT_FALSE(FileExists(path));
    EXPECT_EQ(OpenFile(path, "rb"), nullptr);
    {
        const FileHandle file(OpenFile(path, "wb"));
        ASSERT_NE(file, nullptr);
        ASSERT_EQ(std::fputs("abc", file.get()), 1);
    }
    EXPECT_TRUE(FileExists(path));
    EXPECT_EQ(fs::file_size(ToUtf8(path)), 3U);
    EXPECT_TRUE(RemoveFile(path));
    EXPECT_FALSE(RemoveFile(path));
}

TEST_F(FilesTest, PathsThatCannotBeGivenFaithfullyNameNothing) {
    // What each path would be if it were cut or replaced is there.
    for (const wchar_t* name : {L"a", L"a\xfffd"}) {
        const FileHandle file(OpenFile(Path(name), "wb"));
        ASSERT_NE(file, nullptr);
    }
    const std::array<std::wstring, 4> bad{Path(std::wstring(L"a\0b", 3)), Path(L"a\xd800"),
                                          Path(std::wstring{L'a', static_cast<wchar_t>(0x110000)}), std::wstring()};
    for (const std::wstring& path : bad) {
        EXPECT_FALSE(FileExists(path));
        EXPECT_EQ(OpenFile(path, "rb"), nullptr);
        EXPECT_FALSE(RemoveFile(path));
        EXPECT_FALSE(SetCurrentDirectory(path));
    }
    EXPECT_TRUE(FileExists(Path(L"a")));
    EXPECT_TRUE(FileExists(Path(L"a\xfffd")));
}

TEST_F(FilesTest, FoldersAreNoFilesButCanBecomeTheCurrentOne) {
    const std::wstring before = CurrentDirectory();
    const std::wstring inner = Path(L"\xfc ber");
    fs::create_directory(ToUtf8(inner));
    EXPECT_FALSE(FileExists(inner) || RemoveFile(inner));
    EXPECT_EQ(OpenFile(inner, "rb"), nullptr);
    ASSERT_TRUE(SetCurrentDirectory(inner));
    EXPECT_FALSE(SetCurrentDirectory(Path(L"missing")));
    EXPECT_TRUE(CurrentDirectory().ends_with(L"/\xfc ber"));
    ASSERT_TRUE(SetCurrentDirectory(before));
}

class SafeFileTest : public testing::Test {
protected:
    SafeFileTest() {
        folder.Write("old", "old");
        fs::permissions(Path("old"), fs::perms{0640});
        fs::create_directory(Path("sub"));
        fs::create_symlink("../old", Path("sub/link"));
        fs::create_symlink("link", Path("sub/link_to_link"));
        fs::create_symlink("new", Path("sub/dangling"));
    }

    [[nodiscard]] std::string Path(const std::string& name) const { return folder.Path(name); }

    [[nodiscard]] std::string Read(const std::string& name) const { return folder.Read(name); }

    [[nodiscard]] mode_t Permissions(const std::string& name) const {
        return static_cast<mode_t>(fs::status(Path(name)).permissions());
    }

    // Files that are neither the old one nor links: drafts.
    [[nodiscard]] std::vector<std::string> Drafts() const {
        std::vector<std::string> drafts;
        for (const auto& entry : fs::recursive_directory_iterator(folder.Path())) {
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

    Testing::ScratchFolder folder;
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
    const mode_t mask = umask(002);
    EXPECT_TRUE(Replace("sub/dangling", "new"));
    umask(mask);
    EXPECT_EQ(Read("sub/new"), "new");
    EXPECT_EQ(Permissions("sub/new"), 0664U);
}

TEST_F(SafeFileTest, AChangeOfTheCurrentFolderLeadsNowhereElse) {
    const fs::path before = fs::current_path();
    fs::current_path(folder.Path());
    SafeFile file(L"old");
    fs::current_path(before);
    EXPECT_TRUE(file.Commit());
    EXPECT_EQ(Read("old"), "");
    EXPECT_TRUE(Drafts().empty());
}

TEST_F(SafeFileTest, WhateverFailsLeavesTheOldFile) {
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
    const auto folder_goes = [&] {
        SafeFile file(FromUtf8(Path("gone/file")));
        const bool refused = !file.IsOpen() && !file.Commit() && file.Error() == L"No such file or directory";
        fs::create_directory(Path("gone"));
        SafeFile again(FromUtf8(Path("gone/file")));
        fs::remove_all(Path("gone"));
        return refused && again.IsOpen() && !again.Commit() && again.Error() == L"No such file or directory";
    };
    const auto object_goes = [&] {
        const SafeFile file(path);
        return std::fputs("half", file.File()) >= 0;
    };
    EXPECT_EQ(StatusOf([&] { return fails_for_size(50000, 7); }), 0) << "small writes fail";
    EXPECT_EQ(StatusOf([&] { return fails_for_size(1, 400000); }), 0) << "a large write fails";
    EXPECT_EQ(StatusOf([&] { return fails_for_size(1, 100001); }), 0) << "the last flush fails";
    EXPECT_EQ(StatusOf(folder_goes), 0);
    EXPECT_EQ(StatusOf(object_goes), 0);
    EXPECT_TRUE(Drafts().empty());
    EXPECT_TRUE(WIFSIGNALED(StatusOf([&] {
        const SafeFile file(path);
        std::fputs("half", file.File());
        std::fflush(file.File());
        return raise(SIGKILL) == 0;
    })));
    ASSERT_EQ(Drafts().size(), 1U);
    EXPECT_EQ(Drafts()[0].size(), std::string("old.XXXXXX").size());
    EXPECT_EQ(Read("old"), "old");
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

TEST(Paths, ProgramFolderHoldsTheRunningProgram) {
    EXPECT_EQ(ProgramFolder(), fs::read_symlink("/proc/self/exe").parent_path().wstring());
}

TEST(Paths, FolderPartEndsBeforeTheLastSlash) {
    EXPECT_EQ(FolderPart(L"a/b/c") + FolderPart(L"/c") + FolderPart(L"c"), L"a/b/");
    EXPECT_EQ(FolderPart(L"a/b/"), L"a/b");
}

TEST(RandomBytes, FillsAllBytesAndDoesNotRepeat) {
    std::set<std::array<unsigned char, 16>> drawn;
    std::array<unsigned char, 16> touched{};
    for (int round = 0; round < 100; ++round) {
        std::array<unsigned char, 16> bytes{};
        ASSERT_TRUE(RandomBytes(bytes));
        std::ranges::transform(bytes, touched, touched.begin(), std::bit_or());
        drawn.insert(bytes);
    }
    EXPECT_EQ(drawn.size(), 100U);
    EXPECT_EQ(std::ranges::count(touched, 0), 0);
    EXPECT_TRUE(RandomBytes({}));
}

} // namespace
} // namespace Kestrona::Platform
