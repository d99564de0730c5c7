// Keys and what they protect, through the tool.
#include "tool/run_tool.h"

#include <kestrona/host/encryption_key.h>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <vector>

namespace Kestrona::Tool {
namespace {

constexpr const char* kDefinition = R"(format Accounts {
    key Number
    field Number             : INTEGER | UNIQUE
    field Secret length 12   : REFERENCE | FREE FORMAT | ENCRYPTED
    field Open length 20     : REFERENCE | FREE FORMAT
    field Copy               : REFERENCE | FREE FORMAT | EVALUATE "<{$Secret}>"
}
)";

/// "the text" under the phrase of the tests. A fixed one, since a wrong key passes once in many times.
constexpr const char* kTheText =
    "8OUcq83xEaDlVDxTp+Opd0KS4SvPaa949rvOROvip5HbnYoxDo64/UB+LyXTzNjgRaZ4/LgfruyImQl8kLUDBQ==";

std::string Lines(const std::vector<std::string>& texts) {
    std::string lines;
    for (const std::string& text : texts) {
        lines += text + '\n';
    }
    return lines;
}

class Keys : public testing::Test {
protected:
    void SetUp() override {
        folder_ = FreshFolder("keys");
        setenv("XDG_DATA_HOME", (folder_ + "/user").c_str(), 1);
        unsetenv(Host::kKeyFileVariable);
        unsetenv(Host::kKeyVariable);
        key_ = Plain("key.txt", "a phrase of some length\n");
        definition_ = folder_ + "/accounts.ksdef";
        WriteFile(definition_, kDefinition);
        WriteFile(folder_ + "/Accounts.csv", "Number,Secret,Open\n1,ab,x\n2,,y\n3,\xF0\x9F\xA6\xA6 12,z\n");
    }

    void TearDown() override { std::filesystem::remove_all(folder_); }

    std::string Plain(const std::string& name, const std::string& phrase) {
        std::string path = folder_ + "/" + name;
        WriteFile(path, phrase);
        chmod(path.c_str(), 0600);
        return path;
    }

    ToolRun Show(std::vector<std::string> more) {
        more.insert(more.begin(), {"show", definition_, "Accounts", "--data", folder_, "-o", "csv"});
        return RunTool(more);
    }

    std::string folder_;
    std::string key_;
    std::string definition_;
};

TEST_F(Keys, TextsComeBackWhateverTheirLength) {
    std::vector<std::string> texts = {"", "x", "'; --", "K\xC3\xA9ttle \xF0\x9F\xA6\xA6"};
    for (const std::size_t length : {7u, 8u, 9u, 1000u}) {
        texts.emplace_back(length, 'm');
    }
    const ToolRun encrypted = RunTool({"encrypt", "--key-file", key_}, Lines(texts));
    ASSERT_EQ(encrypted.exit_code, 0) << encrypted.err;
    EXPECT_EQ(encrypted.out.find("mmmmmmm"), std::string::npos);
    const ToolRun decrypted = RunTool({"decrypt", "--key-file", key_}, encrypted.out);
    EXPECT_EQ(decrypted.exit_code, 0) << decrypted.err;
    EXPECT_EQ(decrypted.out, Lines(texts));

    const ToolRun argument = RunTool({"encrypt", "--key-file", key_, "two words", "\n"});
    EXPECT_EQ(RunTool({"decrypt", "--key-file", key_}, argument.out).out, "two words\n\n\n");
}

TEST_F(Keys, AWrongKeyAndADamagedTextAreToldApart) {
    const std::string text = kTheText;
    std::string altered = text;
    altered[text.size() - 10] = altered[text.size() - 10] == 'A' ? 'B' : 'A'; // in the last block

    struct Case {
        std::string text;
        std::string phrase;
        int code;
        std::string told;
    };

    const Case cases[] = {
        {text, "another phrase", 5, "wrong key or altered value"},
        {altered, "a phrase of some length", 5, "wrong key or altered value"},
        {"no base64!", "a phrase of some length", 4, "is damaged: Not enough data to decrypt text"},
        {"AAAA", "a phrase of some length", 4, "is damaged: Not enough data to decrypt text"},
        {text.substr(0, text.size() - 8), "a phrase of some length", 4, "Invalid data supplied to decryption method"},
    };
    for (const Case& c : cases) {
        const ToolRun run = RunTool({"decrypt", "--key-file", Plain("other.txt", c.phrase)}, c.text + "\n");
        EXPECT_EQ(run.exit_code, c.code) << c.told << run.err;
        EXPECT_EQ(run.out, "\n");
        EXPECT_NE(run.err.find(c.told), std::string::npos) << run.err;
    }
    const ToolRun mixed = RunTool({"decrypt", "--key-file", key_, text, "AAAA", text});
    EXPECT_EQ(mixed.out, "the text\n\nthe text\n");
    EXPECT_EQ(mixed.exit_code, 4);
    EXPECT_EQ(RunTool({"encrypt", "--key-file", key_, "\xFF"}).exit_code, 4);
    EXPECT_EQ(RunTool({"decrypt", text}).exit_code, 5) << "without a key";
    EXPECT_EQ(RunTool({"decrypt", text, "--ask-key", "--key-file", folder_ + "/absent"}).exit_code, 5);
}

TEST_F(Keys, AProtectedKeyServesLikeThePhrase) {
    const std::string file = folder_ + "/protected";
    const ToolRun made = RunTool({"protect-key", "-o", file}, "a phrase of some length\n");
    ASSERT_EQ(made.exit_code, 0) << made.err;
    EXPECT_EQ(made.out, "");
    const std::string content = ReadFile(file);
    EXPECT_EQ(content.find("phrase"), std::string::npos);

    struct stat status {};

    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0600u);

    const std::string text = RunTool({"encrypt", "--key-file", key_, "shared"}).out;
    EXPECT_EQ(RunTool({"decrypt", "--key-file", file}, text).out, "shared\n");
    setenv(Host::kKeyFileVariable, file.c_str(), 1);
    EXPECT_EQ(RunTool({"decrypt"}, text).out, "shared\n");

    const ToolRun again = RunTool({"protect-key", "-o", file}, "another\n");
    EXPECT_EQ(again.exit_code, 3);
    EXPECT_EQ(ReadFile(file), content);
    EXPECT_EQ(RunTool({"protect-key", "-o", file, "--force"}, "another\n").exit_code, 0);
    EXPECT_NE(ReadFile(file), content);
    EXPECT_EQ(RunTool({"decrypt"}, text).exit_code, 5);
    EXPECT_EQ(RunTool({"protect-key"}, "\n").exit_code, 5) << "an empty phrase";
    EXPECT_EQ(RunTool({"protect-key", "-o", folder_ + "/absent/key"}, "x\n").exit_code, 3);
    const std::string printed = RunTool({"protect-key"}, "a phrase of some length").out;
    WriteFile(file, printed);
    EXPECT_EQ(RunTool({"decrypt"}, text).out, "shared\n");
}

TEST_F(Keys, FieldsShowTheirTextWithAKeyAndAPlaceholderWithout) {
    EXPECT_EQ(Show({"--key-file", key_}).out, "Number,Secret,Open,Copy\n1,ab,x,<ab>\n2,,y,<>\n"
                                              "3,\xF0\x9F\xA6\xA6 12,z,<\xF0\x9F\xA6\xA6 12>\n");
    EXPECT_EQ(Show({}).out, "Number,Secret,Open,Copy\n1,(encrypted),x,<(encrypted)>\n2,,y,<>\n"
                            "3,(encrypted),z,<(encrypted)>\n");
    EXPECT_EQ(Show({"--text", "--key-file", key_}).out, Show({"--key-file", key_}).out);
    EXPECT_EQ(Show({"--text"}).out, Show({}).out);
}

TEST_F(Keys, ConditionsAndExpressionsReadEncryptedFieldsWithAKeyOnly) {
    struct Case {
        std::vector<std::string> arguments;
        std::string out; // of the keys; "" for a refusal
    };

    const Case cases[] = {
        {{"--where", "Secret=ab"}, "Number\n1\n"},
        {{"--where", "Secret="}, "Number\n2\n"},
        {{"--where", "Secret=ab", "--where", "Number>1"}, "Number\n"},
        {{"--where", "\"{$Secret}\" == \"ab\""}, ""},
        {{"--where", "Number=3", "--add", "S=\"[{$Secret}]\""}, "Number,S\n3,[\xF0\x9F\xA6\xA6 12]\n"},
        {{"--where", "Secret<b"}, ""},
    };
    for (const Case& c : cases) {
        std::vector<std::string> arguments = c.arguments;
        arguments.insert(arguments.end(), {"--columns", "Number"});
        const ToolRun locked = Show(arguments);
        EXPECT_EQ(locked.exit_code, 2) << c.arguments.back();
        EXPECT_NE(locked.err.find("there is no key"), std::string::npos) << locked.err;
        arguments.insert(arguments.end(), {"--key-file", key_});
        const ToolRun run = Show(arguments);
        EXPECT_EQ(run.out, c.out) << c.arguments.back() << run.err;
        EXPECT_EQ(run.exit_code, c.out.empty() ? 2 : 0);
    }
    EXPECT_EQ(Show({"--key-file", folder_}).exit_code, 5);
}

} // namespace
} // namespace Kestrona::Tool
