#include <kestrona/host/ole_server_texts.h>
#include <kestrona/host/resource_directory.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace Kestrona::Host {
namespace {

namespace fs = std::filesystem;

// A folder of resources, and another one for temporary files.
class Resources : public testing::Test {
protected:
    void SetUp() override {
        root_ = fs::temp_directory_path() / ("kestrona-resources-" + std::to_string(getpid()));
        fs::create_directories(root_ / "resources" / "8.cnf"); // a folder, no file
        fs::create_directories(root_ / "temporary");
        ASSERT_EQ(mkfifo((root_ / "resources" / "9.cnf").c_str(), 0600), 0);
        former_ = std::getenv("TMPDIR") == nullptr ? "" : std::getenv("TMPDIR");
        setenv("TMPDIR", (root_ / "temporary").c_str(), 1);
    }

    void TearDown() override {
        if (former_.empty()) {
            unsetenv("TMPDIR");
        } else {
            setenv("TMPDIR", former_.c_str(), 1);
        }
        fs::remove_all(root_);
    }

    void Write(const std::string& name, const std::string& bytes) const {
        std::ofstream(root_ / "resources" / name, std::ios::binary) << bytes;
    }

    [[nodiscard]] std::string Folder() const { return (root_ / "resources").string(); }

    [[nodiscard]] std::ptrdiff_t TemporaryFiles() const {
        return std::distance(fs::directory_iterator(root_ / "temporary"), fs::directory_iterator());
    }

    fs::path root_;
    std::string former_;
};

std::string ReadAll(const std::wstring& path) {
    std::ifstream file(fs::path(ToUtf8(path)), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST_F(Resources, ExtractsACopyOfItsOwnEachTime) {
    std::string big(200'000, '\0');
    for (std::size_t i = 0; i < big.size(); ++i) {
        big[i] = static_cast<char>(i * 31 / 7);
    }
    Write("7.cnf", big);
    Write("-3.cnf", "");
    ResourceDirectory resources(Folder());
    std::wstring first;
    std::wstring second;
    std::wstring empty;
    ASSERT_TRUE(resources.ExtractConfiguration(7, first));
    ASSERT_TRUE(resources.ExtractConfiguration(7, second));
    ASSERT_TRUE(resources.ExtractConfiguration(-3, empty));
    EXPECT_NE(first, second);
    EXPECT_EQ(ReadAll(first), big);
    EXPECT_EQ(ReadAll(second), big);
    EXPECT_EQ(ReadAll(empty), "");
    EXPECT_EQ(fs::status(ToUtf8(first)).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(TemporaryFiles(), 3);
}

TEST_F(Resources, SaysFalseAndLeavesNothingBehind) {
    Write("7.cnf", "x");
    std::wstring path = L"as before";
    ResourceDirectory resources(Folder());
    for (const std::int32_t number : {6, 8, 9, 0, -7, INT32_MIN}) {
        EXPECT_FALSE(resources.ExtractConfiguration(number, path)) << number;
    }
    EXPECT_FALSE(ResourceDirectory().ExtractConfiguration(7, path));
    EXPECT_FALSE(ResourceDirectory(Folder() + "/nowhere").ExtractConfiguration(7, path));
    EXPECT_EQ(TemporaryFiles(), 0);
    setenv("TMPDIR", (root_ / "missing").c_str(), 1);
    EXPECT_FALSE(resources.ExtractConfiguration(7, path));
    EXPECT_EQ(path, L"as before");
}

TEST(OleServerTexts, NullIsEmpty) {
    OleServerTexts texts;
    std::wstring first;
    std::wstring second;
    texts.SetServerTexts(L"one", L"two");
    texts.GetServerTexts(first, second);
    EXPECT_EQ(first + L"|" + second, L"one|two");
    texts.SetServerTexts(nullptr, L"three");
    texts.GetServerTexts(first, second);
    EXPECT_EQ(first + L"|" + second, L"|three");
}

} // namespace
} // namespace Kestrona::Host
