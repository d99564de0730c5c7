// String tables, substitutions, datasets and the tie between root and child formats.
#include "fixtures/store_test.h"

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

using Tables = StoreTest;

void ExpectNoTable(MemoryResidentData& store, std::int32_t table) {
    store.SetTableName(table, KSDLL_AddText(L"no"));
    store.CreateTableFields(table);
    store.SetTableFields(table, 5);
    store.SetTableText(table, 0, KSDLL_AddText(L"no"));
    store.SetTableValue(table, 0, 5.0);
    EXPECT_EQ(store.GetTableName(table), nullptr) << table;
    EXPECT_EQ(store.GetTableFields(table), 0) << table;
    EXPECT_STREQ(store.GetTableText(table, 0), L"") << table;
    EXPECT_EQ(store.GetTableValue(table, 0), -1.0) << table;
}

TEST_F(Tables, StringTablesAreNeutralBeforeTheyAreMadeAndOutOfRange) {
    ExpectNoTable(*store, 0);
    store->CreateTablePointer();
    for (const std::int32_t table : {-1, 1000, 2147483647}) {
        ExpectNoTable(*store, table);
    }
}

TEST_F(Tables, EntriesAreReadUpToTheirCount) {
    store->CreateTablePointer();
    store->SetTableFields(4, 2);
    EXPECT_STREQ(store->GetTableText(4, 0), L""); // counted, but without memory
    EXPECT_EQ(store->GetTableValue(4, 0), -1.0);
    store->CreateTableFields(4);
    store->SetTableText(4, 1, KSDLL_AddText(L"one"));
    store->SetTableValue(4, 1, 1.5);
    store->SetTableText(4, 2, KSDLL_AddText(L"two"));
    store->SetTableText(4, 10000, KSDLL_AddText(L"no"));
    store->SetTableText(4, -1, KSDLL_AddText(L"no"));
    store->SetTableValue(4, 10000, 1.0);
    EXPECT_STREQ(store->GetTableText(4, 0), L"");
    EXPECT_STREQ(store->GetTableText(4, 1), L"one");
    EXPECT_EQ(store->GetTableValue(4, 1), 1.5);
    EXPECT_STREQ(store->GetTableText(4, 2), L"");
    EXPECT_EQ(store->GetTableValue(4, 2), -1.0);
    EXPECT_EQ(store->GetTableValue(4, -1), -1.0);
    store->SetTableFields(4, 3);
    EXPECT_STREQ(store->GetTableText(4, 2), L"two");
    for (const auto& [given, kept] : {std::pair{-1, 0}, {10001, 10000}}) {
        store->SetTableFields(4, given);
        EXPECT_EQ(store->GetTableFields(4), kept);
    }
    store->CreateTablePointer(); // the tables stand: nothing happens
    EXPECT_STREQ(store->GetTableText(4, 1), L"one");
    store->CreateTableFields(4);
    EXPECT_STREQ(store->GetTableText(4, 1), L"");
}

TEST_F(Tables, SubstitutionsEndAtTenThousand) {
    for (int i = 0; i < 10002; ++i) {
        store->SetStringSubstitution(KSDLL_AddText(std::to_wstring(i).c_str()), KSDLL_AddText(L"to"));
    }
    wchar_t* from = nullptr;
    wchar_t* to = nullptr;
    store->GetStringSubstitution(9999, &from, &to);
    EXPECT_STREQ(from, L"9999");
    EXPECT_STREQ(to, L"to");
    for (const std::int32_t index : {10000, 10001, -1, 2147483647}) {
        store->GetStringSubstitution(index, &from, &to);
        EXPECT_EQ(from, nullptr) << index;
        EXPECT_EQ(to, nullptr) << index;
    }
    store->ResetStringSubstitutions();
    store->GetStringSubstitution(0, &from, &to);
    EXPECT_EQ(from, nullptr);
}

class Datasets : public Tables {
protected:
    Datasets() {
        for (const wchar_t* name : {L"Root", L"Child", L"Other", L"Alone"}) {
            AddTable(*store, name, {Number(L"Key")}, 3);
        }
        for (const std::int32_t child : {1, 2}) {
            store->SetAssociatedTable(child, KSDLL_AddText(L"Root"), child == 2);
            store->AddChildTable(0, child);
        }
    }

    std::wstring Names() {
        std::wstring names;
        for (std::int32_t format = 0; format < 4; ++format) {
            names += store->GetDbCurrentDatasetName(format) + std::wstring(L"|");
        }
        return names;
    }
};

TEST_F(Datasets, ChildrenAreFoundByTheNameOfTheirRoot) {
    EXPECT_EQ(store->GetAssociateTableNumber(1), 0);
    EXPECT_EQ(store->GetAssociateTableNumber(0), -1);
    EXPECT_TRUE(store->IsAssociatedTable(2));
    EXPECT_FALSE(store->IsAssociatedTableEligibleCommonDataset(1));
    EXPECT_TRUE(store->IsAssociatedTableEligibleCommonDataset(2));
    EXPECT_TRUE(store->IsFormatChildOfParent(0, 2));
    EXPECT_FALSE(store->IsFormatChildOfParent(0, 3));
    store->SetDbName(0, KSDLL_AddText(L"Renamed"));
    EXPECT_EQ(store->GetAssociateTableNumber(1), -1);
    store->SetAssociatedTable(1, nullptr, false);
    EXPECT_FALSE(store->IsAssociatedTable(1));
}

TEST_F(Datasets, ARootAndItsChildrenSwitchTogether) {
    store->SetDbCurrentDatasetName(1, L"Plan A");
    EXPECT_EQ(Names(), L"Plan A|Plan A|Plan A||");
    store->SetDbCurrentDatasetName(0, store->GetDbCurrentDatasetName(0)); // from its own buffer
    EXPECT_EQ(Names(), L"Plan A|Plan A|Plan A||");
    store->SetDbCurrentDatasetName(3, L"Plan B");
    EXPECT_EQ(Names(), L"Plan A|Plan A|Plan A|Plan B|");
    store->SetDbCurrentDatasetName(0, nullptr);
    EXPECT_EQ(Names(), L"|||Plan B|");
    store->SetDefaultDatasetName(0, KSDLL_AddText(L"Default"));
    EXPECT_EQ(Names(), L"|Default|Default|Plan B|");
    store->SetDefaultDatasetName(0, nullptr);
    EXPECT_EQ(Names(), L"|Default|Default|Plan B|");
    EXPECT_EQ(store->GetDefaultDatasetName(0), nullptr);
}

TEST_F(Datasets, ANameThatDiffersInCaseIsNotStoredButMarksEveryRecord) {
    store->SetDatasetName(3, L"Plan Ä");
    store->ResetDbChanged(3);
    EXPECT_FALSE(store->GetDbChanged(3));
    store->SetDatasetName(3, L"PLAN ä");
    EXPECT_STREQ(store->GetDbCurrentDatasetName(3), L"Plan Ä");
    EXPECT_TRUE(store->GetDbChanged(3));
    EXPECT_EQ(store->GetFormatInfo(3)->changedRecords.Size(), 3u);
    EXPECT_EQ(store->GetRecordChanged(3, 2), 2);
    EXPECT_EQ(store->GetTimestamp(3), 0);

    store->SetCurrentDbSize(3, 0); // without records the format as a whole has changed
    store->ResetDbChanged(3);
    store->FreeFieldMemory(3, 0);
    store->SetDatasetName(3, L"Other");
    EXPECT_TRUE(store->GetDbChanged(3));
    store->ResetDbChanged(3);
    EXPECT_FALSE(store->GetDbChanged(3));
}

TEST_F(Datasets, ALongNameIsCutAndNeverInsideACharacter) {
    store->SetDatasetName(3, std::wstring(600, L'x').c_str());
    EXPECT_EQ(std::wstring(store->GetDbCurrentDatasetName(3)), std::wstring(511, L'x'));
    const std::wstring wide = std::wstring(510, L'y') + L"\U0001F600";
    store->SetDefaultDatasetName(0, KSDLL_AddText(wide.c_str()));
    EXPECT_EQ(std::wstring(store->GetDbCurrentDatasetName(1)), std::wstring(510, L'y'));
    EXPECT_EQ(std::wstring(store->GetDefaultDatasetName(0)), wide);
}

} // namespace

} // namespace Kestrona
