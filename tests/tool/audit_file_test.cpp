// Audit files, as the library writes them and damaged ones.
#include "data/audit_file.h"

#include "fixtures/audited_orders.h"

#include <kestrona/audit_log.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>

namespace Kestrona::Tool {
namespace {

using namespace Fixtures;

// A line for each row, its columns but the time.
std::vector<std::string> Rows(const AuditFile& file) {
    std::vector<std::string> rows;
    for (const AuditRow& row : file.rows) {
        rows.push_back(row.record + '|' + row.format + '|' + row.what + '|' + row.user + '|' + row.field + '|' +
                       row.from + '|' + row.to);
    }
    return rows;
}

TEST(AuditFile, OfTheLibraryIsReadIntoRowsAndACutOneKeepsWhatIsWhole) {
    AuditedOrders orders(L"O'Neil' at home", {Number(L"Key"), Text(L"Owner's note")});
    orders.Store().SetDbString(AuditedOrders::kOrders, 1, 0, L"two\nlines' and \U0001F9A6\n");
    orders.SetList(0, {1, 2});
    KSDLL_WriteLog(orders.Store(), AuditedOrders::kOrders, -1, 0);
    orders.Store().SetDbValue(AuditedOrders::kOrders, 0, 1, 2.0);
    orders.SetList(1, {2});
    KSDLL_WriteLog(orders.Store(), AuditedOrders::kOrders, 0, 1);

    const std::string bytes = AuditedOrders::LogBytes();
    const AuditFile file = ReadAudit(bytes);
    EXPECT_TRUE(file.faults.empty());
    EXPECT_FALSE(file.rows.front().time.empty());
    const std::vector<std::string> whole = Rows(file);
    const std::string created = "1|Orders|Created|O'Neil' at home|";
    const std::string changed = "2|Orders|Changed|O'Neil' at home|";
    EXPECT_EQ(whole, (std::vector<std::string>{
                         created + "Owner's note||two\nlines' and \xF0\x9F\xA6\xA6\n",
                         created + "List||Candle;K\xC3\xA9ttle \xF0\x9F\xA6\xA6",
                         changed + "Key|0.00|2.00",
                         changed + "Owner's note|two\nlines' and \xF0\x9F\xA6\xA6\n|",
                         changed + "List|Candle;K\xC3\xA9ttle \xF0\x9F\xA6\xA6|K\xC3\xA9ttle \xF0\x9F\xA6\xA6",
                     }));
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
        {L"Record 1 in format 'F' Created by '" + std::wstring(5000, L'U') + L"' at T\n" + heading, 1, {1}},
    };
    for (const Case& c : cases) {
        const AuditFile file = ReadAudit(Utf16File(L"\uFEFF" + c.text));
        std::vector<std::size_t> faults;
        for (const AuditFault& fault : file.faults) {
            faults.push_back(fault.line);
        }
        EXPECT_EQ(file.rows.size(), c.rows) << ToUtf8(c.text);
        EXPECT_EQ(faults, c.faults) << ToUtf8(c.text);
    }
    EXPECT_EQ(ReadAudit("\xFE\xFF" + std::string("\0R", 2)).faults.size(), 1u) << "big-endian, no entry";
    EXPECT_EQ(ReadAudit("Record 1").faults.size(), 1u) << "no byte order mark";
}

} // namespace
} // namespace Kestrona::Tool
