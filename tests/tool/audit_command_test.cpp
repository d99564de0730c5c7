// Audit files, as the library writes them and damaged ones.
#include "data/audit_file.h"
#include "fixtures/recording_services.h"
#include "fixtures/schema.h"
#include "persistence/audit_file.h"
#include "tool/run_tool.h"

#include <kestrona/audit_log.h>
#include <kestrona/host_settings.h>
#include <kestrona/matrices.h>
#include <kestrona/process.h>
#include <kestrona/store.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cwchar>
#include <filesystem>
#include <memory>

namespace Kestrona::Tool {
namespace {

using namespace Fixtures;

class UserMessages : public RecordingMessages {
public:
    void GetMessageText(std::int32_t id, wchar_t* buffer, std::size_t size) override {
        std::wcsncpy(buffer, id == 0x4a67 ? L"O'Neil' at home" : L"", size);
    }
};

std::string Utf16(const std::wstring& text) {
    std::string bytes;
    for (const char16_t unit : ToUtf16(text)) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

// The columns behind the time, joined by bars.
std::string Row(const AuditRow& row) {
    return row.record + '|' + row.format + '|' + row.what + '|' + row.user + '|' + row.field + '|' + row.from + '|' +
           row.to;
}

std::vector<std::string> Rows(const AuditFile& file) {
    std::vector<std::string> rows;
    for (const AuditRow& row : file.rows) {
        rows.push_back(Row(row));
    }
    return rows;
}

class AuditFiles : public testing::Test {
protected:
    AuditFiles() {
        std::filesystem::current_path(folder_);
        MessageManager::setInstance(new UserMessages());
        SetAuditLogEnabled(true);
        Field list = Reference(L"List", 0, 1);
        list.type |= TypeBit::kMatrix;
        list.classes = {Classes::kList, Classes::kDatabase};
        AddTable(*store_, L"Products", {Number(L"Key"), Text(L"Name")}, 2);
        AddTable(*store_, L"Orders", {Number(L"Key"), Text(L"Owner's note"), list}, 3);
        for (std::int32_t record = 0; record < 2; ++record) {
            store_->SetDbValue(0, 0, record, record + 1.0);
            store_->SetDbString(0, 1, record, record == 0 ? L"Candle" : L"K\u00e9ttle");
        }
    }

    ~AuditFiles() override {
        Persistence::CloseAuditFile();
        std::filesystem::current_path(former_folder_);
        std::filesystem::remove_all(folder_);
    }

    void SetList(std::int32_t record, const std::vector<double>& keys) {
        const std::int32_t id = KSDLL_CreateMatrix(*store_, static_cast<std::uint32_t>(keys.size()), 1, 2, record);
        for (std::size_t i = 0; i < keys.size(); ++i) {
            KSDLL_SetMatrixValue(id, static_cast<std::uint32_t>(i), keys[i]);
        }
    }

    void WriteEntries() {
        store_->SetDbString(1, 1, 0, L"two\nlines' and \U0001F9A6\n");
        SetList(0, {1, 2});
        KSDLL_WriteLog(*store_, 1, -1, 0);
        store_->SetDbValue(1, 0, 1, 2.0);
        SetList(1, {2});
        KSDLL_WriteLog(*store_, 1, 0, 1);
        Persistence::CloseAuditFile();
    }

    FreshProcess process_;
    std::filesystem::path former_folder_ = std::filesystem::current_path();
    std::string folder_ = FreshFolder("audit");
    std::unique_ptr<Data::MemoryResident::MemoryResidentData> store_ = Data::MemoryResident::CreateMemoryResidentData();
};

TEST_F(AuditFiles, OfTheLibraryAreReadIntoRows) {
    WriteEntries();
    const AuditFile file = ReadAudit(ReadFile("Audit.log"));
    EXPECT_TRUE(file.faults.empty());
    const std::string created = "1|Orders|Created|O'Neil' at home|";
    const std::string changed = "2|Orders|Changed|O'Neil' at home|";
    EXPECT_EQ(Rows(file), (std::vector<std::string>{
                              created + "Owner's note||two\nlines' and \xF0\x9F\xA6\xA6\n",
                              created + "List||Candle;K\xC3\xA9ttle",
                              changed + "Key|0.00|2.00",
                              changed + "Owner's note|two\nlines' and \xF0\x9F\xA6\xA6\n|",
                              changed + "List|Candle;K\xC3\xA9ttle|K\xC3\xA9ttle",
                          }));
    EXPECT_FALSE(file.rows.front().time.empty());

    const ToolRun run = RunTool({"audit", "show", "Audit.log", "-o", "jsonl"});
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 5);
    EXPECT_NE(run.out.find("\"To\":\"Candle;K\xC3\xA9ttle\""), std::string::npos) << run.out;
    EXPECT_EQ(RunTool({"audit", "show", "absent"}).exit_code, 3);
    EXPECT_EQ(RunTool({"audit", "show", folder_}).exit_code, 3);
    EXPECT_EQ(RunTool({"audit"}).exit_code, 2);
}

// Cut anywhere, the rows before the cut stay as they were.
TEST_F(AuditFiles, ThatWereCutKeepWhatIsWhole) {
    WriteEntries();
    const std::string bytes = ReadFile("Audit.log");
    const std::vector<std::string> whole = Rows(ReadAudit(bytes));
    for (std::size_t size = 2; size < bytes.size(); ++size) {
        const std::vector<std::string> rows = Rows(ReadAudit(std::string_view(bytes).substr(0, size)));
        ASSERT_LE(rows.size(), whole.size() + 1);
        for (std::size_t i = 0; i + 1 < rows.size(); ++i) {
            ASSERT_EQ(rows[i], whole[i]) << size;
        }
    }
}

TEST(AuditFile, TellsLinesThatBelongToNoEntry) {
    struct Case {
        std::wstring text;
        std::size_t rows;
        std::vector<std::size_t> faults;
    };

    const std::wstring heading = L"Record 1 in format 'F' Created by 'U' at T\n";
    const Case cases[] = {
        {L"", 0, {}},
        {heading, 1, {}},
        {heading + L"\tField 'A' Set to 'x'\n" + heading, 2, {}},
        {L"\tField 'A' Set to 'x'\n" + heading + L"\tField 'A' Set to 'x'\n", 1, {1}},
        {heading + L"\tField 'A' Set to 'x'\n\t\telement\n", 1, {3}},
        {heading + L"\tField 'A' Set to \n\t\tx\n\tTo\n", 1, {4}},
        {heading + L"\tField 'A' Changed from 'x' 'y'\n\tField 'B' Changed from 'x' to 'y'\n", 1, {2}},
        {heading + L"\tField 'A' Set to 'x'\nstray\n\tField 'B' Set to 'x\n y'\n", 2, {3}},
        {heading + L"stray\n\tField 'A' Set to 'x'\n", 1, {2}},
        {L"stray\nlines\n" + heading, 1, {1}},
    };
    for (const Case& c : cases) {
        const AuditFile file = ReadAudit(Utf16(L"\uFEFF" + c.text));
        std::vector<std::size_t> faults;
        for (const AuditFault& fault : file.faults) {
            faults.push_back(fault.line);
        }
        EXPECT_EQ(file.rows.size(), c.rows) << ToUtf8(c.text);
        EXPECT_EQ(faults, c.faults) << ToUtf8(c.text);
    }
    EXPECT_EQ(ReadAudit("\xFE\xFF" + std::string("\0R", 2)).faults.size(), 1u) << "big-endian, no entry";
    EXPECT_EQ(ReadAudit("Record 1").faults.size(), 1u) << "no byte order mark";
    const std::string path = FreshFolder("damaged") + "/log";
    WriteFile(path, "Record 1");
    EXPECT_EQ(RunTool({"audit", "show", path}).exit_code, 4);
    std::filesystem::remove_all(std::filesystem::path(path).parent_path());
}

} // namespace
} // namespace Kestrona::Tool
