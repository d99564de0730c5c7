// Encryption and protection, against the openssl program with the documented parameters.
#include "fixtures/scratch_files.h"
#include "platform/base64.h"
#include "platform/cipher.h"
#include "platform/user_key.h"

#include <kestrona/encryption.h>
#include <kestrona/unicode.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <span>

namespace Kestrona::Encryption {

namespace {

using Platform::Bytes;
using Platform::DecodeBase64;
using Platform::EncodeBase64;

constexpr const wchar_t* kPhrase = L"quiet Otter \u00fc \U0001F9A6";

std::string Hexadecimal(std::span<const unsigned char> bytes) {
    std::string text;
    for (const unsigned char byte : bytes) {
        std::array<char, 3> digits{};
        std::snprintf(digits.data(), digits.size(), "%02x", byte);
        text += digits.data();
    }
    return text;
}

Bytes BytesOf(const std::u16string& units) {
    Bytes bytes;
    for (const char16_t unit : units) {
        bytes.push_back(static_cast<unsigned char>(unit & 0xFF));
        bytes.push_back(static_cast<unsigned char>(unit >> 8));
    }
    return bytes;
}

std::string Message(const std::function<void()>& action) {
    try {
        action();
    } catch (const EncryptionException& error) {
        return error.what();
    } catch (const DataProtectionException& error) {
        return std::string("protection: ") + error.what();
    }
    return {};
}

class Encryption : public testing::Test {
protected:
    Encryption() {
        setenv("XDG_DATA_HOME", folder_.Path().c_str(), 1);
        Platform::ForgetUserKeys();
        service.Initialise(protection.Protect(kPhrase), true);
    }

    ~Encryption() override {
        service.Initialise();
        Platform::ForgetUserKeys();
    }

    // Runs openssl over these bytes; its output.
    Bytes OpenSsl(const std::string& arguments, const Bytes& in, const std::string& last = {}) {
        folder_.Write("in", {in.begin(), in.end()});
        const std::string command = "openssl " + arguments + " -out '" + folder_.Path("out") + "' " +
                                    (last.empty() ? "-in '" + folder_.Path("in") + "'" : last);
        EXPECT_EQ(std::system(command.c_str()), 0) << command;
        const std::string out = folder_.Read("out");
        return {out.begin(), out.end()};
    }

    // The key as the openssl program derives it.
    std::string KeyByOpenSsl(std::span<const unsigned char> salt) {
        const Bytes password = BytesOf(ToUtf16(kPhrase) + u'\0');
        return Hexadecimal(
            OpenSsl("kdf -binary -keylen 32 -kdfopt digest:SHA1 -kdfopt hexpass:" + Hexadecimal(password) +
                        " -kdfopt hexsalt:" + Hexadecimal(salt) + " -kdfopt iter:100",
                    {}, "PBKDF2"));
    }

    std::string CipherArguments(std::span<const unsigned char> block) {
        return "enc -aes-256-cbc -nopad -d -K " + KeyByOpenSsl(block.first(16)) + " -iv " +
               Hexadecimal(block.subspan(16, 16));
    }

    Testing::ScratchFolder folder_;
    DataProtection protection;
    EncryptionService& service = *EncryptionService::Instance();
};

// Lengths around the block, a pair of surrogates, a lone one.
const std::wstring kTexts[] = {L"",
                               L"seven 7",
                               L"eight 88",
                               std::wstring(1000, L'\u00e4'),
                               L"otter \U0001F9A6",
                               std::wstring(1, static_cast<wchar_t>(0xD800))};

TEST_F(Encryption, TheOpensslProgramReadsWhatTheServiceDoes) {
    for (const std::wstring& text : kTexts) {
        const std::optional<Bytes> block = DecodeBase64(service.Encrypt(text));
        ASSERT_TRUE(block);
        Bytes expected = BytesOf(ToUtf16(text));
        expected.resize(expected.size() / 16 * 16 + 16);
        EXPECT_EQ(OpenSsl(CipherArguments(*block), Bytes(block->begin() + 32, block->end())), expected);
        EXPECT_EQ(BytesOf(ToUtf16(service.Decrypt(EncodeBase64(*block)))), expected);
    }
}

TEST_F(Encryption, WhatCannotBeReadIsToldApart) {
    const std::string too_short = "Not enough data to decrypt text";
    const std::string no_blocks = "Invalid data supplied to decryption method";
    const std::wstring whole = service.Encrypt(L"text");
    Bytes damaged = *DecodeBase64(whole);
    damaged.back() ^= 1;

    EXPECT_EQ(service.Decrypt(L""), L"");
    EXPECT_NE(service.Encrypt(L"text"), whole) << "no two encryptions are alike";
    for (const auto& [text, message] : std::initializer_list<std::pair<std::wstring, std::string>>{
             {L"not base64!", too_short},
             {whole + L"A", too_short},
             {EncodeBase64(Bytes(15)), too_short},
             {EncodeBase64(Bytes(16)), no_blocks},
             {EncodeBase64(Bytes(33)), no_blocks},
             {EncodeBase64(Bytes(32)), ""},
             {L" " + whole.substr(0, 10) + L"\r\n" + whole.substr(10), ""},
             {EncodeBase64(damaged), ""}}) {
        EXPECT_EQ(Message([&, &sealed = text] { (void)service.Decrypt(sealed); }), message) << ToUtf8(text);
    }
    // A wrong phrase gives a wrong text, never a failure; without a phrase there is none to unprotect.
    service.Initialise(protection.Protect(L"other"), true);
    EXPECT_NE(service.Decrypt(whole).substr(0, 4), L"text");
    service.Initialise();
    EXPECT_FALSE(service.get_Enabled());
    EXPECT_NE(Message([&] { (void)service.Encrypt(L"text"); }).find("protection: "), std::string::npos);
    service.Initialise(L"key", false);
    EXPECT_TRUE(service.get_Enabled());
    EXPECT_FALSE(service.get_FullyEnabled());
}

TEST_F(Encryption, ProtectedTextsComeBackAndChangesAreSeen) {
    for (const std::wstring& text : kTexts) {
        const std::wstring guarded = protection.Protect(text);
        EXPECT_EQ(protection.Unprotect(guarded), text);
        Bytes block = *DecodeBase64(guarded);
        for (std::size_t place = 0; place < block.size(); place += 5) {
            block[place] ^= 0x10;
            EXPECT_NE(Message([&] { (void)protection.Unprotect(EncodeBase64(block)); }), "") << place;
            block[place] ^= 0x10;
        }
        block.pop_back();
        EXPECT_NE(Message([&] { (void)protection.Unprotect(EncodeBase64(block)); }), "");
    }
    EXPECT_NE(Message([&] { (void)protection.Unprotect(L""); }), "");
}

TEST_F(Encryption, TheKeyFileIsForItsOwnerAlone) {
    namespace fs = std::filesystem;
    const fs::path file = folder_.Path("kestrona/user.key");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0600));
    EXPECT_EQ(fs::file_size(file), 32U);
    EXPECT_EQ(fs::status(file.parent_path()).permissions(), fs::perms(0700));
    const fs::directory_iterator entries(file.parent_path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1) << "a draft is left";
    const std::wstring guarded = protection.Protect(L"text");
    const auto unprotected = [&] { // as by another process of the same user
        Platform::ForgetUserKeys();
        return Message([&] { EXPECT_EQ(protection.Unprotect(guarded), L"text"); });
    };
    EXPECT_EQ(unprotected(), "");
    fs::permissions(file, fs::perms(0640));
    EXPECT_EQ(unprotected(), "protection: Permission denied");
    fs::permissions(file, fs::perms(0600));
    fs::resize_file(file, 31);
    EXPECT_EQ(unprotected(), "protection: Bad message");
    fs::remove(file);
    fs::create_symlink(folder_.Path("elsewhere"), file);
    EXPECT_NE(unprotected(), "");
    fs::remove(file);
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    EXPECT_EQ(unprotected(), "protection: Permission denied") << "a pipe";
    fs::remove(file);
    EXPECT_EQ(unprotected(), "protection: Bad message") << "another key";
}

// How often the bytes stand in the memory that this process can write. What is searched is the memory of a copy of the
// process, so that what the search itself reads into is not found; the shadow memory of a sanitizer is passed over.
std::size_t CountInMemory(std::span<const unsigned char> wanted) {
    constexpr std::size_t kLargest = std::size_t{1} << 28;
    const pid_t copy = fork();
    if (copy == 0) {
        alarm(60);
        pause();
        _exit(0);
    }
    const std::string place = "/proc/" + std::to_string(copy);
    std::ifstream maps(place + "/maps");
    const int memory = open((place + "/mem").c_str(), O_RDONLY | O_CLOEXEC);
    std::size_t count = 0;
    for (std::string line; std::getline(maps, line);) {
        std::size_t first = 0;
        std::size_t last = 0;
        std::array<char, 5> rights{};
        if (std::sscanf(line.c_str(), "%zx-%zx %4s", &first, &last, rights.data()) != 3 || rights[1] != 'w' ||
            last - first > kLargest) {
            continue;
        }
        Bytes bytes(last - first);
        const ssize_t got = pread(memory, bytes.data(), bytes.size(), static_cast<off_t>(first));
        const auto end = bytes.begin() + std::max<ssize_t>(got, 0);
        for (auto at = std::search(bytes.begin(), end, wanted.begin(), wanted.end()); at != end;
             at = std::search(at + 1, end, wanted.begin(), wanted.end())) {
            ++count;
        }
    }
    close(memory);
    kill(copy, SIGKILL);
    waitpid(copy, nullptr, 0);
    return count;
}

TEST_F(Encryption, NoSecretStaysInMemory) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "the heap of the thread sanitizer is part of one area that is too large to search";
#endif
    // The phrase is put together where it is used, as UTF-16 bytes only for the search.
    const std::u16string_view first = u"heron-and-h";
    const std::u16string_view second = u"eather \U0001F9A6\U0001F9A6\U0001F9A6";
    service.Initialise(protection.Protect(FromUtf16(first) + FromUtf16(second)), true);
    const std::wstring cipher = service.Encrypt(L"text");
    (void)service.Decrypt(cipher);

    Platform::SecretBytes password((first.size() + second.size() + 1) * 2);
    for (std::size_t i = 0; i < first.size() + second.size(); ++i) {
        password.Data()[2 * i] = static_cast<unsigned char>(i < first.size() ? first[i] : second[i - first.size()]);
    }
    // The one copy is the test's own. Memory that was given back keeps all but its first 16 bytes, and a copy may have
    // been cut behind, so what is searched for is a middle.
    constexpr std::size_t kOverwritten = 16;
    EXPECT_EQ(CountInMemory(password.View().subspan(kOverwritten, 20)), 1U);
    const Bytes block = *DecodeBase64(cipher);
    Platform::CipherFailure failure;
    const auto key = Platform::DeriveKey(password.View(), std::span(block).first(16), 100, failure);
    ASSERT_TRUE(key);
    EXPECT_EQ(CountInMemory(key->View().subspan(kOverwritten)), 1U);
}

} // namespace

} // namespace Kestrona::Encryption
