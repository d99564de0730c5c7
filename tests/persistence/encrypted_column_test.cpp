// The column of encrypted texts.
#include "fixtures/audited_orders.h"
#include "fixtures/scratch_files.h"
#include "platform/user_key.h"

#include <kestrona/audit_log.h>
#include <kestrona/encrypted_string_column.h>
#include <kestrona/records.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace Kestrona::Data::MemoryResident {

namespace {

using Encryption::EncryptionService;

// Writes down what it is told.
class Reports : public NullRecordStateStrategy {
public:
    explicit Reports(std::vector<std::int32_t>& changed) : changed_(changed) {}

    void RecordChanged(std::int32_t record) override { changed_.push_back(record); }

private:
    std::vector<std::int32_t>& changed_;
};

class EncryptedColumn : public testing::Test {
protected:
    EncryptedColumn() {
        setenv("XDG_DATA_HOME", folder_.Path().c_str(), 1);
        Platform::ForgetUserKeys();
        service.Initialise(Encryption::DataProtection().Protect(L"phrase"), true);
    }

    ~EncryptedColumn() override {
        service.Initialise();
        Platform::ForgetUserKeys();
    }

    // Without the zeros behind a text.
    static std::wstring Trimmed(const std::wstring& text) { return text.substr(0, text.find(L'\0')); }

    Testing::ScratchFolder folder_;
    EncryptionService& service = *EncryptionService::Instance();
    std::vector<std::int32_t> changed;
};

TEST_F(EncryptedColumn, HoldsNothingThatCanBeRead) {
    EncryptedStringColumn column(L"none", new Reports(changed), &service);
    column.SetValue(3, L"secret");
    EXPECT_EQ(column.GetCurrentSize(), 4U);
    EXPECT_EQ(column.GetValue(3), std::wstring(L"secret\0\0", 8));
    for (const std::int32_t record : {-1, 0, 2, 4, kFirstScratchRecord}) {
        EXPECT_EQ(Trimmed(column.GetValue(record)), L"none") << record;
    }
    EXPECT_EQ(column.GetStoredValue(3).find(L"secret"), std::wstring::npos);
    column.SetValue(3, L"secret");
    EXPECT_EQ(changed, (std::vector<std::int32_t>{3, 3})) << "a fresh encryption is a change";
    column.SetStoredValue(3, column.GetStoredValue(3));
    column.SetValue(kLastScratchRecord, L"aside");
    EXPECT_EQ(changed.size(), 2U);
    EXPECT_EQ(Trimmed(column.GetValue(kLastScratchRecord)), L"aside");
    column.Insert(1, L"between");
    column.Erase(0, 7.0);
    EXPECT_EQ(Trimmed(column.GetValue(0)), L"between");
    EXPECT_EQ(Trimmed(column.GetValue(3)), L"secret");
    EXPECT_EQ(column.Find(L"secret"), -1);
    EXPECT_TRUE(std::unique_ptr<FindResult>(column.FindAll(L"secret"))->IsEmpty());
    EXPECT_EQ(Trimmed(column.FindMaxValue(true)), L"none");
    EXPECT_EQ(column.CreateIndexedColumn(), &column);
    column.Resize(6);
    EXPECT_EQ(Trimmed(column.GetValue(5)), L"none");
    column.Resize(0);
    EXPECT_EQ(column.GetCurrentSize(), 0U);
}

TEST_F(EncryptedColumn, FilesHoldTheEncryptedTexts) {
    EncryptedStringColumn column(L"", new NullRecordStateStrategy(), &service);
    column.SetValue(0, L"first");
    column.SetValue(1, L"");
    const Testing::File file(std::tmpfile());
    column.WriteToFile(file.get());
    std::rewind(file.get());
    EncryptedStringColumn loaded(L"", new NullRecordStateStrategy(), &service);
    loaded.ReadFromFile(file.get());
    ASSERT_EQ(loaded.GetCurrentSize(), 2U);
    EXPECT_EQ(loaded.GetStoredValue(0), column.GetStoredValue(0));
    EXPECT_EQ(Trimmed(loaded.GetValue(0)), L"first");
}

// Through every move a text stays the very one that was encrypted.
TEST_F(EncryptedColumn, MovesWithItsRecordAsItIs) {
    const Fixtures::FreshProcess process;
    const auto store = CreateMemoryResidentData();
    Fixtures::Field secret = Fixtures::Text(L"Secret", 8);
    secret.classes.push_back(Classes::kEncrypted);
    Fixtures::AddTable(*store, L"People", {Fixtures::Number(L"Key"), secret}, 12);
    const auto stored = [&](std::int32_t record) {
        return KSDLL_GetEncryptedStringValue(*store, 0, 1, record);
    };
    std::vector<std::wstring> expected;
    for (std::int32_t record = 0; record < 12; ++record) {
        if (record < 10) { // the last two keep the default
            store->SetDbString(0, 1, record, L"text" + std::to_wstring(record));
        }
        expected.push_back(stored(record));
    }
    for (const std::vector<std::int32_t>& records : {std::vector<std::int32_t>{0}, {2, 5}, {0, 1, 3, 6, 8}}) {
        for (std::size_t i = records.size(); i-- > 0;) {
            expected.erase(expected.begin() + records[i]);
        }
        KSDLL_DeleteDbItems(*store, 0, records);
        KSDLL_InsertDbItem(*store, 0, 3);
        EXPECT_EQ(Trimmed(store->GetDbString(0, 1, 3)), L"");
        expected.insert(expected.begin() + 3, stored(3));
        store->SwapItemInfo(0, 1, 0);
        std::swap(expected[0], expected[1]);
        for (std::size_t i = 0; i < expected.size(); ++i) {
            ASSERT_EQ(stored(static_cast<std::int32_t>(i)), expected[i]) << i;
        }
    }
    store->CopyItemInfo(2, 0, 0);
    EXPECT_EQ(stored(0), expected[2]);
    KSDLL_SetEncryptedStringValue(*store, 0, 1, 0, expected[1]);
    EXPECT_EQ(stored(0), expected[1]);
    EXPECT_EQ(KSDLL_GetEncryptedStringValue(*store, 0, 0, 0), L"") << "a field without texts";
}

TEST_F(EncryptedColumn, TheAuditLogShowsTheTextWithoutItsZeros) {
    Fixtures::Field secret = Fixtures::Text(L"Secret");
    secret.classes.push_back(Classes::kEncrypted);
    Fixtures::AuditedOrders orders(L"planner", {Fixtures::Number(L"Key"), secret});
    orders.Store().SetDbString(Fixtures::AuditedOrders::kOrders, 1, 1, L"code");
    KSDLL_WriteLog(orders.Store(), Fixtures::AuditedOrders::kOrders, 0, 1);
    const std::wstring text = Fixtures::AuditedOrders::LogText();
    EXPECT_NE(text.find(L"\tField 'Secret' Changed from '' to 'code'\n"), std::wstring::npos);
    EXPECT_EQ(text.find(L'\0'), std::wstring::npos);
}

TEST_F(EncryptedColumn, IsClosedWithoutTheService) {
    EXPECT_THROW(EncryptedStringColumn(L"", new NullRecordStateStrategy(), nullptr), const wchar_t*);
    EncryptedStringColumn column(L"", new NullRecordStateStrategy(), &service);
    column.SetValue(0, L"text");
    service.Initialise(L"key", false);
    EXPECT_THROW((void)column.GetValue(0), const wchar_t*);
    EXPECT_THROW(column.SetValue(0, L"x"), const wchar_t*);
    EXPECT_THROW(column.Insert(0, L"x"), const wchar_t*);
    EXPECT_THROW((void)column.FindMinValue(), const wchar_t*);
    try {
        (void)column.GetDefaultValue();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const wchar_t* text) {
        EXPECT_STREQ(text, L"The Encryption Service is not enabled");
    }
    EXPECT_EQ(column.GetCurrentSize(), 1U);
    EXPECT_FALSE(column.GetStoredValue(0).empty());
}

} // namespace

} // namespace Kestrona::Data::MemoryResident
