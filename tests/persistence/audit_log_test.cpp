// The audit log, its file line by line.
#include "fixtures/recording_services.h"
#include "fixtures/schema.h"
#include "persistence/audit_file.h"

#include <kestrona/audit_log.h>
#include <kestrona/host_settings.h>
#include <kestrona/matrices.h>
#include <kestrona/process.h>
#include <kestrona/store.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

// Knows the name of the user.
class UserMessages : public RecordingMessages {
public:
    void GetMessageText(std::int32_t id, wchar_t* buffer, std::size_t size) override {
        std::wcsncpy(buffer, id == 0x4a67 ? L"planner" : L"", size);
    }
};

class AuditLog : public testing::Test {
protected:
    AuditLog() {
        std::filesystem::create_directories(folder_);
        std::filesystem::current_path(folder_);
        MessageManager::setInstance(new UserMessages());
        SetAuditLogEnabled(true);
        Field list = Reference(L"List", 0, 1);
        list.type |= TypeBit::kMatrix;
        list.classes = {Classes::kList, Classes::kDatabase};
        AddTable(*store, L"Products", {Number(L"Key"), Text(L"Name")}, 2);
        AddTable(*store, L"Orders", {Number(L"Key"), Number(L"Amount", 2.0), Text(L"Note"), list}, 3);
        for (std::int32_t record = 0; record < 2; ++record) {
            store->SetDbValue(0, 0, record, record + 1.0);
        }
        store->SetDbString(0, 1, 0, L"Candle");
        store->SetDbString(0, 1, 1, L"K\u00e9ttle \U0001F9A6");
    }

    ~AuditLog() override {
        Persistence::CloseAuditFile();
        std::filesystem::current_path(former_folder_);
        std::filesystem::remove_all(folder_);
    }

    void SetList(std::int32_t record, const std::vector<double>& keys) {
        const std::int32_t id = KSDLL_CreateMatrix(*store, static_cast<std::uint32_t>(keys.size()), 1, 3, record);
        for (std::size_t i = 0; i < keys.size(); ++i) {
            KSDLL_SetMatrixValue(id, static_cast<std::uint32_t>(i), keys[i]);
        }
    }

    // The file's code units, the byte order mark included; what stands between " at " and the line's end replaced.
    std::wstring Log() {
        Persistence::CloseAuditFile();
        std::ifstream file("Audit.log", std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        std::u16string units;
        for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
            units += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                           static_cast<unsigned char>(bytes[i + 1]) << 8);
        }
        std::wstring text = FromUtf16(units);
        for (std::size_t at = text.find(L" at "); at != std::wstring::npos; at = text.find(L" at ", at + 4)) {
            text.replace(at + 4, text.find(L'\n', at) - at - 4, L"T");
        }
        return text;
    }

    FreshProcess process;
    std::filesystem::path former_folder_ = std::filesystem::current_path();
    std::filesystem::path folder_ =
        std::filesystem::path(testing::TempDir()) / ("kestrona-audit-" + std::to_string(getpid()));
    std::unique_ptr<MemoryResidentData> store = CreateMemoryResidentData();
};

TEST_F(AuditLog, TellsNewAndChangedRecords) {
    store->SetDbValue(1, 0, 0, 7.0);
    SetList(0, {1, 2, 9});
    KSDLL_WriteLog(*store, 1, -1, 0);
    store->CopyItemInfo(0, 1, 1);
    KSDLL_WriteLog(*store, 1, 0, 1);
    SetList(2, {2});
    store->SetDbValue(1, 1, 2, 2.5);
    store->SetDbString(1, 2, 2, L"late");
    KSDLL_WriteLog(*store, 1, 0, 2);
    EXPECT_EQ(Log(), L"\uFEFFRecord 1 in format 'Orders' Created by 'planner' at T\n"
                     L"\tField 'Key' Set to '7.00'\n"
                     L"\tField 'Note' Set to ''\n"
                     L"\tField 'List' Set to \n\t\tCandle\n\t\tK\u00e9ttle \U0001F9A6\n\t\t\n"
                     L"Record 3 in format 'Orders' Changed by 'planner' at T\n"
                     L"\tField 'Key' Changed from '7.00' to '0.00'\n"
                     L"\tField 'Amount' Changed from '2.00' to '2.50'\n"
                     L"\tField 'Note' Changed from '' to 'late'\n"
                     L"\tField 'List' Changed from \n\t\tCandle\n\t\tK\u00e9ttle \U0001F9A6\n\t\t\n"
                     L"\tTo\n\t\tK\u00e9ttle \U0001F9A6\n");
}

TEST_F(AuditLog, AppendsWithOneByteOrderMarkAndTheTimeOfTheMachine) {
    KSDLL_SetDoubleSv(kSvFixedNow, 40000.0);
    KSDLL_WriteLog(*store, 1, -1, 0);
    const std::wstring first = Log();
    EXPECT_EQ(KSDLL_GetDoubleSv(kSvFixedNow), 40000.0);
    KSDLL_WriteLog(*store, 1, -1, 0);
    EXPECT_EQ(Log(), first + first.substr(1));
    EXPECT_EQ(std::ranges::count(Log(), L'\uFEFF'), 1);
}

TEST_F(AuditLog, IsSilentWhereThereIsNothingToTell) {
    KSDLL_WriteLog(*store, 1, 1, 1);
    SetAuditLogEnabled(false);
    KSDLL_WriteLog(*store, 1, -1, 0);
    EXPECT_EQ(Log(), L"\uFEFF") << "the file is opened at the first call";
    SetAuditLogEnabled(true);
    std::filesystem::remove("Audit.log");
    std::filesystem::create_directory("Audit.log");
    KSDLL_WriteLog(*store, 1, -1, 0); // cannot be opened: the entry alone is lost
    std::filesystem::remove("Audit.log");
    KSDLL_WriteLog(*store, 1, -1, 0);
    EXPECT_FALSE(Log().empty());
}

} // namespace

} // namespace Kestrona
