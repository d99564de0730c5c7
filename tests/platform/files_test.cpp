#include "platform/files.h"

#include "platform/random.h"
#include "platform/wide_c_string.h"

#include <kestrona/unicode.h>

#include <gtest/gtest.h>

#include <array>
#include <cwchar>
#include <filesystem>
#include <set>

namespace Kestrona::Platform {
namespace {

// A fresh folder that is gone with its content at the end.
class FilesTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = ::testing::TempDir() + "kestrona_XXXXXX";
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder_ = pattern;
    }

    void TearDown() override { std::filesystem::remove_all(folder_); }

    std::wstring Path(const std::wstring& name) const { return FromUtf8(folder_.string()) + L"/" + name; }

    std::filesystem::path folder_;
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
    EXPECT_EQ(std::filesystem::file_size(ToUtf8(path)), 3U);
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

TEST_F(FilesTest, FoldersAreNoFiles) {
    std::filesystem::create_directory(folder_ / "inner");
    EXPECT_FALSE(FileExists(Path(L"inner")));
    EXPECT_EQ(OpenFile(Path(L"inner"), "rb"), nullptr);
    EXPECT_FALSE(RemoveFile(Path(L"inner")));
    EXPECT_TRUE(std::filesystem::exists(folder_ / "inner"));
}

TEST_F(FilesTest, CurrentDirectoryFollowsAndStaysOnFailure) {
    const std::wstring before = CurrentDirectory();
    const std::wstring inner = Path(L"\xfc ber");
    std::filesystem::create_directory(ToUtf8(inner));
    ASSERT_TRUE(SetCurrentDirectory(inner));
    EXPECT_TRUE(CurrentDirectory().ends_with(L"/\xfc ber"));
    EXPECT_FALSE(SetCurrentDirectory(Path(L"missing")));
    EXPECT_TRUE(CurrentDirectory().ends_with(L"/\xfc ber"));
    ASSERT_TRUE(SetCurrentDirectory(before));
}

TEST(Paths, ProgramFolderHoldsTheRunningProgram) {
    EXPECT_EQ(ProgramFolder(), std::filesystem::read_symlink("/proc/self/exe").parent_path().wstring());
}

TEST(Paths, FolderPartEndsBeforeTheLastSlash) {
    EXPECT_EQ(FolderPart(L"a/b/c"), L"a/b");
    EXPECT_EQ(FolderPart(L"a/b/"), L"a/b");
    EXPECT_EQ(FolderPart(L"/c"), L"/");
    EXPECT_EQ(FolderPart(L"c"), L"");
    EXPECT_EQ(FolderPart(L""), L"");
}

TEST(RandomBytes, FillsAllBytesAndDoesNotRepeat) {
    std::set<std::array<unsigned char, 16>> drawn;
    std::array<unsigned, 16> touched{};
    for (int round = 0; round < 100; ++round) {
        std::array<unsigned char, 16> bytes{};
        ASSERT_TRUE(RandomBytes(bytes));
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            touched[i] |= bytes[i];
        }
        drawn.insert(bytes);
    }
    EXPECT_EQ(drawn.size(), 100U);
    EXPECT_EQ(std::count(touched.begin(), touched.end(), 0U), 0);
    EXPECT_TRUE(RandomBytes({}));
}

} // namespace
} // namespace Kestrona::Platform
