// Where the key of the encryption service comes from.
#include "fixtures/scratch_files.h"

#include <kestrona/encryption.h>
#include <kestrona/host/encryption_key.h>

#include <gtest/gtest.h>
#include <pty.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <string>

namespace Kestrona::Host {
namespace {

using Encryption::DataProtection;
using Encryption::EncryptionService;

class EncryptionKeys : public testing::Test {
protected:
    void SetUp() override {
        setenv("XDG_DATA_HOME", folder_.Path().c_str(), 1);
        unsetenv(kKeyFileVariable);
        unsetenv(kKeyVariable);
    }

    void TearDown() override { EncryptionService::Instance()->Initialise(); }

    std::string File(const std::string& content, mode_t mode = 0600) {
        const std::string name = "key" + std::to_string(++files_);
        folder_.Write(name, content);
        const std::string path = folder_.Path(name);
        chmod(path.c_str(), mode);
        return path;
    }

    static std::string Protected(const std::wstring& phrase) {
        const std::wstring text = DataProtection().Protect(phrase);
        return {text.begin(), text.end()};
    }

    static std::wstring Phrase(const KeyResult& result) {
        return result.protected_key.empty() ? L"" : DataProtection().Unprotect(result.protected_key);
    }

    Testing::ScratchFolder folder_;
    int files_ = 0;
};

TEST_F(EncryptionKeys, ComeFromTheFirstPlaceThatNamesOne) {
    EXPECT_EQ(FindKey({}).source, KeySource::None);
    EXPECT_EQ(FindKey({}).error, "");
    setenv(kKeyVariable, "from the environment \xC3\xA9", 1);
    EXPECT_EQ(Phrase(FindKey({})), L"from the environment \u00e9");
    EXPECT_EQ(FindKey({"", false, false}).source, KeySource::None);
    setenv(kKeyFileVariable, File(Protected(L"from its file")).c_str(), 1);
    EXPECT_EQ(Phrase(FindKey({})), L"from its file");
    EXPECT_EQ(Phrase(FindKey({File("named"), true, true})), L"named");
    setenv(kKeyFileVariable, folder_.Path("absent").c_str(), 1);
    EXPECT_EQ(FindKey({}).source, KeySource::EnvironmentFile);
    EXPECT_NE(FindKey({}).error, "") << "no other place stands in";
    unsetenv(kKeyFileVariable);
    setenv(kKeyVariable, "\xFF", 1);
    EXPECT_NE(FindKey({}).error, "");
}

TEST_F(EncryptionKeys, OfFilesAreTakenOrRefusedWithAReason) {
    const std::string sealed = Protected(L"sealed");
    std::string altered = sealed;
    altered[20] = altered[20] == 'A' ? 'B' : 'A';

    struct Case {
        std::string content;
        mode_t mode;
        std::wstring phrase;
        std::string told; // "" where the phrase is taken
    };

    const Case cases[] = {
        {"plain", 0600, L"plain", ""},
        {"plain\r\n", 0400, L"plain", ""},
        {" blanks count ", 0600, L" blanks count ", ""},
        {sealed, 0644, L"sealed", ""},
        {sealed + "\n", 0600, L"sealed", ""},
        {"plain", 0640, L"", "open to others"},
        {"plain", 0604, L"", "open to others"},
        {altered, 0600, L"", "altered"},
        {sealed.substr(0, sealed.size() - 4), 0600, L"", "altered"},
        {"\n", 0600, L"", "is empty"},
        {"\xC3", 0600, L"", "UTF-8"},
        {"one\ntwo\n", 0600, L"", "more than one line"},
        {std::string("a\0b", 3), 0600, L"", "UTF-8"},
        {std::string(70000, 'x'), 0600, L"", "too large"},
    };
    for (const Case& c : cases) {
        const KeyResult result = FindKey({File(c.content, c.mode), true, false});
        EXPECT_EQ(Phrase(result), c.phrase) << c.told;
        EXPECT_EQ(result.error.empty(), c.told.empty()) << result.error;
        EXPECT_NE(result.error.find(c.told), std::string::npos) << result.error;
        EXPECT_EQ(result.error.find("plain\r"), std::string::npos);
    }
    const std::string pipe = folder_.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_NE(FindKey({pipe, true, false}).error.find("no regular file"), std::string::npos);
    EXPECT_NE(FindKey({folder_.Path(), true, false}).error, "");
}

TEST_F(EncryptionKeys, EnableTheServiceOrLeaveItAlone) {
    EncryptionService* const service = EncryptionService::Instance();
    SetUpEncryption({});
    EXPECT_FALSE(service->get_Enabled());
    SetUpEncryption({File("one"), true, false});
    ASSERT_TRUE(service->get_FullyEnabled());
    const std::wstring text = service->Encrypt(L"kept");
    EXPECT_NE(SetUpEncryption({File("open", 0644), true, false}).error, "");
    EXPECT_EQ(service->Decrypt(text).substr(0, 4), L"kept");
}

// Runs `act` in a process of its own at a terminal of its own, types `typed` once it has asked, and returns everything
// that the terminal showed. `status` is what `wait` tells.
template <typename Act>
std::string AtTerminal(const std::string& typed, int& status, Act act) {
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        alarm(60); // a lost signal fails the test instead of keeping it waiting
        _exit(act() ? 0 : 1);
    }
    std::string shown;
    std::array<char, 256> block{};
    bool has_typed = false;
    for (ssize_t got = 0; (got = read(terminal, block.data(), block.size())) > 0;) {
        shown.append(block.data(), static_cast<std::size_t>(got));
        if (!has_typed && shown.find("Phrase? ") != std::string::npos) {
            has_typed = write(terminal, typed.data(), typed.size()) > 0;
        }
    }
    close(terminal);
    waitpid(child, &status, 0);
    return shown;
}

TEST_F(EncryptionKeys, AreTypedWithoutBeingShown) {
    int status = -1;
    const std::string shown = AtTerminal("opensesame\n", status, [] {
        const TypedSecret typed = AskForSecret("Phrase? ");
        return typed.error.empty() && typed.text.Text() == L"opensesame";
    });
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    EXPECT_EQ(shown, "Phrase? \r\n");
}

TEST_F(EncryptionKeys, TypedHalfwayEndTheProcessAtAnInterrupt) {
    int status = -1;
    const std::string shown = AtTerminal("open\x03", status, [] { return !AskForSecret("Phrase? ").error.empty(); });
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT) << status;
    EXPECT_EQ(shown.find("open"), std::string::npos) << shown;
}

TEST_F(EncryptionKeys, CannotBeTypedWithoutATerminal) {
    const pid_t child = fork();
    if (child == 0) {
        setsid();
        const KeyResult result = FindKey({"", false, true});
        _exit(result.source == KeySource::Terminal && !result.error.empty() && result.protected_key.empty() ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

} // namespace
} // namespace Kestrona::Host
