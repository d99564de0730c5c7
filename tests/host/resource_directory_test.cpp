#include "fixtures/scratch_files.h"

#include <kestrona/host/ole_server_texts.h>
#include <kestrona/host/resource_directory.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace Kestrona::Host {
namespace {

namespace fs = std::filesystem;

// A folder of resources, and another one for temporary files.
class Resources : public testing::Test {
protected:
    Resources() {
        fs::create_directory(resources_.Path("8.cnf")); // a folder, no file
        EXPECT_EQ(mkfifo(resources_.Path("9.cnf").c_str(), 0600), 0);
    }

    [[nodiscard]] std::ptrdiff_t TemporaryFiles() const {
        return std::distance(fs::directory_iterator(temporary_.Path()), fs::directory_iterator());
    }

    Testing::ScratchFolder resources_;
    Testing::TemporaryFolder temporary_;
};

TEST_F(Resources, ExtractsACopyOfItsOwnEachTime) {
    std::string big(200'000, '\0');
    for (std::size_t i = 0; i < big.size(); ++i) {
        big[i] = static_cast<char>(i * 31 / 7);
    }
    resources_.Write("7.cnf", big);
    resources_.Write("-3.cnf", "");
    ResourceDirectory resources(resources_.Path());
    const auto extract = [&](std::int32_t number) {
        std::wstring path;
        EXPECT_TRUE(resources.ExtractConfiguration(number, path));
        return ToUtf8(path);
    };
    const std::string first = extract(7);
    const std::string second = extract(7);
    EXPECT_NE(first, second);
    for (const auto& [path, content] : {std::pair(first, big), {second, big}, {extract(-3), ""}}) {
        EXPECT_TRUE(temporary_.Read(fs::path(path).filename()) == content);
        EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    }
    EXPECT_EQ(TemporaryFiles(), 3);
}

TEST_F(Resources, SaysFalseAndLeavesNothingBehind) {
    resources_.Write("7.cnf", "x");
    std::wstring path = L"as before";
    ResourceDirectory resources(resources_.Path());
    for (const std::int32_t number : {6, 8, 9, 0, -7, INT32_MIN}) {
        EXPECT_FALSE(resources.ExtractConfiguration(number, path)) << number;
    }
    EXPECT_FALSE(ResourceDirectory().ExtractConfiguration(7, path));
    EXPECT_FALSE(ResourceDirectory(resources_.Path("nowhere")).ExtractConfiguration(7, path));
    EXPECT_EQ(TemporaryFiles(), 0);
    setenv("TMPDIR", temporary_.Path("missing").c_str(), 1);
    EXPECT_FALSE(resources.ExtractConfiguration(7, path));
    EXPECT_EQ(path, L"as before");
}

TEST(OleServerTexts, NullIsEmpty) {
    OleServerTexts texts;
    std::wstring first;
    std::wstring second;
    texts.SetServerTexts(L"one", L"two");
    texts.SetServerTexts(nullptr, L"three");
    texts.GetServerTexts(first, second);
    EXPECT_EQ(first + L"|" + second, L"|three");
}

} // namespace
} // namespace Kestrona::Host
