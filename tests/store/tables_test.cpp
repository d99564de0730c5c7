// String tables, substitutions, datasets and the tie between root and child formats.
#include "fixtures/store_test.h"

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

class Tables : public StoreTest {
protected:
    void Set(std::int32_t table, std::int32_t entry, const wchar_t* text, double value) {
        store->SetTableText(table, entry, KSDLL_AddText(text));
        store->SetTableValue(table, entry, value);
    }

    void ExpectEntry(std::int32_t table, std::int32_t entry, const wchar_t* text, double value) {
        EXPECT_STREQ(store->GetTableText(table, entry), text) << table << ' ' << entry;
        EXPECT_EQ(store->GetTableValue(table, entry), value) << table << ' ' << entry;
    }
};

TEST_F(Tables, StringTablesAreNeutralBeforeTheyAreMadeAndOutOfRange) {
    for (const std::int32_t table : {0, -1, 1000, 2147483647}) {
        store->SetTableName(table, KSDLL_AddText(L"no"));
        store->CreateTableFields(table);
        store->SetTableFields(table, 5);
        Set(table, 0, L"no", 5.0);
        ExpectEntry(table, 0, L"", -1.0);
        EXPECT_EQ(store->GetTableName(table), nullptr) << table;
        EXPECT_EQ(store->GetTableFields(table), 0) << table;
        if (table == 0) {
            store->CreateTablePointer();
        }
    }
}

TEST_F(Tables, EntriesAreReadUpToTheirCount) {
    store->CreateTablePointer();
    store->SetTableFields(4, 2);
    ExpectEntry(4, 0, L"", -1.0); // counted, but without memory
    store->CreateTableFields(4);
    for (const std::int32_t entry : {1, 2, 10000, -1}) {
        Set(4, entry, L"text", 1.5);
    }
    ExpectEntry(4, 1, L"text", 1.5);
    ExpectEntry(4, 2, L"", -1.0);
    ExpectEntry(4, -1, L"", -1.0);
    store->SetTableFields(4, 3);
    ExpectEntry(4, 2, L"text", 1.5);
    for (const auto& [given, kept] : {std::pair{-1, 0}, {10001, 10000}}) {
        store->SetTableFields(4, given);
        EXPECT_EQ(store->GetTableFields(4), kept);
    }
    store->CreateTablePointer(); // the tables stand: nothing happens
    EXPECT_STREQ(store->GetTableText(4, 1), L"text");
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
    for (const std::int32_t index : {10000, -1, 2147483647}) {
        store->GetStringSubstitution(index, &from, &to);
        EXPECT_TRUE(from == nullptr && to == nullptr) << index;
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

TEST_F(Datasets, ARootAndItsChildrenSwitchTogether) {
    EXPECT_FALSE(store->IsAssociatedTableEligibleCommonDataset(1));
    EXPECT_TRUE(store->IsAssociatedTableEligibleCommonDataset(2));
    store->SetDbCurrentDatasetName(1, L"Plan A");
    store->SetDbCurrentDatasetName(0, store->GetDbCurrentDatasetName(0)); // from its own buffer
    EXPECT_EQ(Names(), L"Plan A|Plan A|Plan A||");
    store->SetDbCurrentDatasetName(3, L"Plan B");
    EXPECT_EQ(Names(), L"Plan A|Plan A|Plan A|Plan B|");
    store->SetDbCurrentDatasetName(0, nullptr);
    EXPECT_EQ(Names(), L"|||Plan B|");
    for (const wchar_t* const name : {L"Default", static_cast<const wchar_t*>(nullptr)}) {
        store->SetDefaultDatasetName(0, KSDLL_AddText(name));
        EXPECT_EQ(Names(), L"|Default|Default|Plan B|");
    }
    EXPECT_EQ(store->GetDefaultDatasetName(0), nullptr);
    store->SetDbName(0, KSDLL_AddText(L"Renamed"));
    EXPECT_EQ(store->GetAssociateTableNumber(1), -1);
}

TEST_F(Datasets, TablesOfOneRootBelongTogether) {
    std::string together;
    for (std::int32_t a = 0; a < 4; ++a) {
        for (std::int32_t b = 0; b < 4; ++b) {
            together += std::to_string(KSDLL_AreTablesAssociated(*store, a, b));
        }
        together += ' ';
    }
    EXPECT_EQ(together, "0110 1110 1110 0000 ");
}

TEST_F(Datasets, ANameThatDiffersInCaseIsNotStoredButMarksEveryRecord) {
    store->SetDatasetName(3, L"Plan Ä");
    store->ResetDbChanged(3);
    EXPECT_FALSE(store->GetDbChanged(3));
    store->SetDatasetName(3, L"PLAN ä");
    EXPECT_STREQ(store->GetDbCurrentDatasetName(3), L"Plan Ä");
    EXPECT_TRUE(store->GetDbChanged(3));
    EXPECT_EQ(store->GetFormatInfo(3)->changedRecords.Size(), 3u);
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
