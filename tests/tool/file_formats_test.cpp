// The examples of docs/file-formats.md: each line of bytes stands in a file that the tool or the library writes here.
//
// A block of examples begins with "```hex NAME". Its lines hold an offset (a negative one counts from the end), bytes,
// and perhaps a remark behind two blanks; ".." is a byte that differs from run to run. A line follows the one before it
// without a gap unless "..." stands between them.
#include "fixtures/audited_orders.h"
#include "platform/base64.h"
#include "tool/run_tool.h"

#include <kestrona/audit_log.h>
#include <kestrona/host/encryption_key.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <sstream>

namespace Kestrona::Tool {
namespace {

using Files = std::map<std::string, std::string>;

constexpr const char* kSnapshot = "tiny.kes";
// In a snapshot: the time and the version of the writer.
constexpr std::size_t kOpenBegin = 26;
constexpr std::size_t kOpenEnd = 50;

constexpr const char* kPhrase = "open sesame";
constexpr const char* kText = "Säge";

std::string Page() {
    return ReadFile(SourcePath("docs/file-formats.md"));
}

// What stands between a line and the end of its block.
std::string Block(const std::string& page, const std::string& begin) {
    const std::size_t start = page.find('\n' + begin + '\n');
    EXPECT_NE(start, std::string::npos) << begin;
    const std::size_t text = start + begin.size() + 2;
    return start == std::string::npos ? "" : page.substr(text, page.find("```", text) - text);
}

// An audit log with one entry.
std::string AuditLog() {
    Fixtures::AuditedOrders orders(L"planner", {Fixtures::Number(L"Key"), Fixtures::Text(L"Note")});
    orders.Store().SetDbValue(Fixtures::AuditedOrders::kOrders, 0, 0, 7.0);
    KSDLL_WriteLog(orders.Store(), Fixtures::AuditedOrders::kOrders, -1, 0);
    return Fixtures::AuditedOrders::LogBytes();
}

void Run(const std::vector<std::string>& arguments) {
    const ToolRun run = RunTool(arguments);
    EXPECT_EQ(run.exit_code, 0) << run.err;
}

Files MakeFiles(const std::string& page) {
    const std::string folder = FreshFolder("formats");
    const std::string definition = SourcePath("docs/examples/tiny/tiny.ksdef");
    Run({"compile", definition, "-o", folder + "/tiny.cnf"});
    Run({"compress", folder + "/tiny.cnf", folder + "/tiny.z"});
    Run({"import", definition, "--data", SourcePath("docs/examples/tiny/data"), "-o", folder + '/' + kSnapshot});
    Run({"translate", "extract", definition, "-o", folder});
    Files files;
    for (const char* name : {"tiny.cnf", "tiny.z", kSnapshot, "KSSERVER.LST"}) {
        files[name] = ReadFile(folder + '/' + name);
    }
    std::filesystem::remove_all(folder);
    files["Audit.log"] = AuditLog();
    const auto secret = Platform::DecodeBase64(FromUtf8(Block(page, "```encrypted")));
    EXPECT_TRUE(secret);
    if (secret) {
        files["secret"].assign(secret->begin(), secret->end());
    }
    return files;
}

struct Example {
    std::size_t offset = 0;
    std::vector<std::string> bytes;
};

std::optional<Example> ReadLine(const std::string& line, std::size_t file_size) {
    std::istringstream text(line);
    long long offset = 0;
    text >> offset;
    text.get();
    text.get();
    Example example{static_cast<std::size_t>(offset < 0 ? offset + static_cast<long long>(file_size) : offset), {}};
    char byte[2];
    while (text.read(byte, 2) && byte[0] != ' ') {
        example.bytes.emplace_back(byte, 2);
        text.get();
    }
    return example.bytes.empty() ? std::nullopt : std::optional(example);
}

std::string Hex(const std::string& bytes, std::size_t at) {
    constexpr const char* kDigits = "0123456789abcdef";
    if (at >= bytes.size()) {
        return "nothing";
    }
    const auto byte = static_cast<unsigned char>(bytes[at]);
    return {kDigits[byte >> 4], kDigits[byte & 15]};
}

void Check(const Example& example, const std::string& name, const std::string& bytes) {
    for (std::size_t i = 0; i < example.bytes.size(); ++i) {
        const std::size_t at = example.offset + i;
        if (example.bytes[i] == "..") {
            EXPECT_TRUE(name == kSnapshot && at >= kOpenBegin && at < kOpenEnd) << name << " at " << at;
        } else {
            EXPECT_EQ(example.bytes[i], Hex(bytes, at)) << name << " at " << at;
        }
    }
}

void CheckBlock(std::istream& page, const std::string& name, const std::string& bytes) {
    bool is_gap = true;
    std::size_t next = 0;
    for (std::string line; std::getline(page, line) && line != "```";) {
        if (line.ends_with("...")) {
            is_gap = true;
            continue;
        }
        const std::optional<Example> example = ReadLine(line, bytes.size());
        ASSERT_TRUE(example) << name << ": " << line;
        EXPECT_TRUE(is_gap || example->offset == next) << name << ": " << line;
        is_gap = false;
        next = example->offset + example->bytes.size();
        Check(*example, name, bytes);
    }
}

TEST(FileFormats, ExamplesStandInTheFiles) {
    constexpr std::string_view kFence = "```hex ";
    const std::string text = Page();
    const Files files = MakeFiles(text);
    Files unseen = files;
    std::istringstream page(text);
    for (std::string line; std::getline(page, line);) {
        if (line.starts_with(kFence)) {
            const std::string name = line.substr(kFence.size());
            ASSERT_TRUE(files.contains(name)) << line;
            CheckBlock(page, name, files.at(name));
            unseen.erase(name);
        }
    }
    EXPECT_TRUE(unseen.empty()) << "no example shows " << unseen.begin()->first;
}

TEST(FileFormats, EncryptedExampleIsThatText) {
    const std::string folder = FreshFolder("key");
    setenv("XDG_DATA_HOME", folder.c_str(), 1);
    unsetenv(Host::kKeyFileVariable);
    setenv(Host::kKeyVariable, kPhrase, 1);
    const ToolRun run = RunTool({"decrypt"}, Block(Page(), "```encrypted"));
    unsetenv(Host::kKeyVariable);
    std::filesystem::remove_all(folder);
    EXPECT_EQ(run.out, std::string(kText) + '\n') << run.err;
}

} // namespace
} // namespace Kestrona::Tool
