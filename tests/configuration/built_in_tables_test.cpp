#include "configuration/definition_fixture.h"

#include <kestrona/built_in_tables.h>
#include <kestrona/process.h>

#include <gtest/gtest.h>

namespace Kestrona::Configuration {

namespace {

class BuiltInTables : public ConfigurationTest::DefinitionFixture {};

TEST_F(BuiltInTables, KeepsTheFirstValueOfAConstantWithoutRegardToCase) {
    BuiltInTableManager::AddDefineItem(store_, L"abc", 1.0);
    BuiltInTableManager::AddDefineItem(store_, L"\u00c4b", 2.0);
    BuiltInTableManager::AddDefineItem(store_, L"ABC", 3.0);
    BuiltInTableManager::AddDefineItem(store_, L"\u00e4B", 4.0);
    std::int32_t table = -1;
    ASSERT_TRUE(BuiltInTableManager::FindBuiltInTable(store_, L"#define_Table", &table));
    ASSERT_EQ(store_.GetTableFields(table), 2);
    EXPECT_EQ(std::wstring(store_.GetTableText(table, 0)), L"abc");
    EXPECT_EQ(store_.GetTableValue(table, 0), 1.0);
    EXPECT_EQ(store_.GetTableValue(table, 1), 2.0);
}

TEST_F(BuiltInTables, TellsTheFirstHelpTextOfANumberAndMakesNoTable) {
    std::wstring text = L"untouched";
    EXPECT_FALSE(HelpPopupTableManager::GetHelpText(store_, 7, &text));
    EXPECT_EQ(store_.GetTableName(0), nullptr);
    const std::int32_t table = HelpPopupTableManager::FindOrCreate(store_);
    EXPECT_EQ(HelpPopupTableManager::FindOrCreate(store_), table);
    EXPECT_FALSE(HelpPopupTableManager::GetHelpText(store_, 7, &text));
    EXPECT_EQ(text, L"untouched");
    store_.SetTableFields(table, 2);
    store_.SetTableText(table, 0, KSDLL_AddText(L"first"));
    store_.SetTableText(table, 1, KSDLL_AddText(L"second"));
    store_.SetTableValue(table, 0, 7.0);
    store_.SetTableValue(table, 1, 7.0);
    EXPECT_TRUE(HelpPopupTableManager::GetHelpText(store_, 7, &text));
    EXPECT_EQ(text, L"first");
}

TEST_F(BuiltInTables, SetsUpOnceAProcessAndServesEveryStore) {
    EXPECT_EQ(BuiltInTableManager::FindOrCreateStringTable(store_, L"A"), 0);
    ASSERT_EQ(log_->lines.size(), 2001U);
    EXPECT_EQ(log_->lines[0], L"Initialising");
    EXPECT_EQ(log_->lines[1], L"Create Table 0");
    EXPECT_EQ(log_->lines[2000], L"Table 999 Created");
    const auto second = Data::MemoryResident::CreateMemoryResidentData();
    EXPECT_EQ(BuiltInTableManager::FindOrCreateStringTable(*second, L"B"), 0);
    EXPECT_EQ(BuiltInTableManager::FindOrCreateStringTable(*second, L"A"), 1);
    EXPECT_EQ(BuiltInTableManager::FindOrCreateStringTable(store_, L"a"), 1);
    EXPECT_EQ(log_->lines.size(), 2001U);
}

TEST_F(BuiltInTables, LeavesTablesThatTheHostHasFilled) {
    store_.CreateTablePointer();
    store_.CreateTableFields(0);
    store_.SetTableName(0, KSDLL_AddText(L"Colours"));
    store_.SetTableFields(0, 3);
    EXPECT_EQ(BuiltInTableManager::FindOrCreateStringTable(store_, L"Sizes"), 1);
    EXPECT_EQ(store_.GetTableFields(0), 3);
}

TEST_F(BuiltInTables, GivesMinusOneWhenAllSlotsAreTaken) {
    store_.CreateTablePointer();
    for (std::int32_t slot = 0; slot < kMaxStringTables; ++slot) {
        store_.SetTableName(slot, KSDLL_AddText(std::to_wstring(slot).c_str()));
    }
    EXPECT_EQ(BuiltInTableManager::FindOrCreateStringTable(store_, L"one more"), -1);
    BuiltInTableManager::AddDefineItem(store_, L"lost", 1.0);
}

TEST_F(BuiltInTables, ReadsTheDefaultTextOfAFreeFormatField) {
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"FF_STRING_DEF \"new order\" | UNIQUE", L"new order"},
        {L"FF_STRING_DEF  \"open", L"open"},
        {L"FF_STRING_DEF \"\"", L""},
        {L"STRING_DEF \"x\"", L""},
        {L"FF_STRING_DEF(\"x\")", L""},
    };
    Add(L"Orders", {Fixtures::Text(L"Name")});
    for (const auto& [text, expected] : cases) {
        store_.SetDbClassString(0, 0, text);
        EXPECT_EQ(KSDLL_GetDefaultFreeFormatStringValue(store_, 0, 0), expected);
    }
    EXPECT_EQ(KSDLL_GetDefaultFreeFormatStringValue(store_, 9, 9), L"");
}

} // namespace

} // namespace Kestrona::Configuration
