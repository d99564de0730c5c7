// The audit log, its file line by line.
#include "fixtures/audited_orders.h"

#include <kestrona/audit_log.h>
#include <kestrona/dates.h>
#include <kestrona/host_settings.h>
#include <kestrona/process.h>
#include <kestrona/store.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

class AuditLog : public testing::Test {
protected:
    // The file's text; what stands between " at " and the line's end replaced.
    static std::wstring Log() {
        std::wstring text = AuditedOrders::LogText();
        for (std::size_t at = text.find(L" at "); at != std::wstring::npos; at = text.find(L" at ", at + 4)) {
            text.replace(at + 4, text.find(L'\n', at) - at - 4, L"T");
        }
        return text;
    }

    AuditedOrders orders{L"planner", {Number(L"Key"), Number(L"Amount", 2.0), Text(L"Note")}};
    MemoryResidentData* store = &orders.Store();
};

TEST_F(AuditLog, TellsNewAndChangedRecords) {
    store->SetDbValue(1, 0, 0, 7.0);
    orders.SetList(0, {1, 2, 9});
    KSDLL_WriteLog(*store, 1, -1, 0);
    store->CopyItemInfo(0, 1, 1);
    KSDLL_WriteLog(*store, 1, 0, 1);
    orders.SetList(2, {2});
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
    const std::wstring raw = AuditedOrders::LogText();
    const std::size_t time = raw.find(L" at ") + 4;
    double machine_time = 0.0;
    EXPECT_EQ(KSDLL_StringToOADate(&machine_time, raw.substr(time, raw.find(L'\n', time) - time)), 0) << ToUtf8(raw);
    EXPECT_GT(machine_time, 45000.0);
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
