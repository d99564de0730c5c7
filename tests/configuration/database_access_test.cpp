// The resolution as a whole, children of other formats, and the tables that the library makes itself.
#include "configuration/definition_fixture.h"

#include <kestrona/built_in_tables.h>
#include <kestrona/definition_load.h>
#include <kestrona/execution_state.h>
#include <kestrona/expression.h>
#include <kestrona/process.h>

#include <gtest/gtest.h>

namespace Kestrona::Configuration {

namespace {

using ConfigurationTest::Matrix;
using ConfigurationTest::Real;
using Fixtures::Field;

class DatabaseAccess : public ConfigurationTest::DefinitionFixture, public IInformationFeedback {
protected:
    void SetStage(std::int32_t message) override { feedback_ += L"stage " + std::to_wstring(message) + L" "; }

    void SetProgress(std::int32_t percent) override { feedback_ += std::to_wstring(percent) + L"% "; }

    Data::MemoryResident::IColumn<double>* Column(std::int32_t field) { return store_.GetDbColumn(0, field); }

    std::wstring feedback_;
};

TEST_F(DatabaseAccess, RunsItsPhasesInOrder) {
    Field label = Fixtures::Text(L"Label");
    label.classification = L"FREE FORMAT | EVALUATE \"No. {#Key}\"";
    label.classes.push_back(Classes::kEvaluate);
    Add(L"Orders", {Fixtures::Number(L"Key"), Real(L"Sum", L"EVALUATE \"{#Key} * 2\"", {Classes::kEvaluate}), label,
                    Real(L"Gone", L"HIDDEN IF \"{#Sum} > 5\"", {Classes::kHiddenIf})});
    EXPECT_EQ(check_database_access(store_, true, this), 0) << Boxes().c_str();
    EXPECT_EQ(log_->lines,
              (std::vector<std::wstring>{L"About to Check DB Access", L"About to Check DB Relationships",
                                         L"Format 0 Field 0", L"Format 0 Field 1", L"Format 0 Field 2",
                                         L"Format 0 Field 3", L"About to create data arrays",
                                         L"About to check Primary key existance", L"DB Integrety checked out OK"}));
    EXPECT_EQ(feedback_, L"stage 17138 50% ");
    store_.SetCurrentDbSize(0, 1);
    store_.SetDbValue(0, 0, 0, 8);
    EXPECT_EQ(store_.GetDbValue(0, 1, 0), 16);
    EXPECT_EQ(store_.GetDbString(0, 2, 0), L"No. 8");
    EXPECT_EQ(KSDLL_EvaluateExpression(store_, 0, store_.GetDbHiddenIfExpression(0, 3), nullptr), 1.0);
    EXPECT_TRUE(store_.GetDbEvaluateExpression(0, 0) == nullptr && store_.GetDbHiddenIfExpression(0, 1) == nullptr);
}

TEST_F(DatabaseAccess, MakesNoColumnWhenNoneIsWanted) {
    Add(L"Orders", {Fixtures::Number(L"Key"), Fixtures::Text(L"Name")});
    EXPECT_EQ(check_database_access(store_, false, nullptr), 0);
    EXPECT_TRUE(Column(0) == nullptr && store_.GetDbStringArray(0, 1) == nullptr);
}

// Where the key is no field that is there, too.
TEST_F(DatabaseAccess, MissesAPrimaryKeyWhenEverythingElseIsDone) {
    Add(L"Loose", {Fixtures::Number(L"Key")});
    for (const auto& [key, fields] : {std::pair{-1, 1}, {7, 9}, {0, -9}}) {
        messages_->boxes.clear();
        store_.SetDbKey(0, key);
        store_.SetDbFields(0, fields);
        EXPECT_EQ(check_database_access(store_, true, nullptr), -1);
        EXPECT_EQ(Boxes(), L"<21039|Loose>");
        EXPECT_NE(Column(0), nullptr);
    }
}

TEST_F(DatabaseAccess, StopsAtTheFirstFailureOfEachPass) {
    Add(L"Orders", {Fixtures::Number(L"Key"), Real(L"X", L""), Real(L"Y", L"SWITCH(None)")});
    const auto fails = [&](const wchar_t* x, Class c, const wchar_t* text) {
        messages_->boxes.clear();
        store_.SetDbClassString(0, 1, x);
        store_.AddDbClass(0, 1, c);
        EXPECT_EQ(check_database_access(store_, true, nullptr), -1);
        ASSERT_EQ(messages_->boxes.size(), 1U);
        EXPECT_NE(Boxes().find(text), std::wstring::npos) << Boxes().c_str();
        EXPECT_EQ(Column(0), nullptr) << "no columns are made";
        store_.RemoveDbClass(0, 1, c);
        store_.SetDbClassString(0, 2, L"");
    };
    fails(L"RELATED FIELD(None)", Classes::kUnchecked, L"RELATED FIELD(None)");
    fails(L"AUTO RESTRICT(Key)", Classes::kUnchecked, L"<21508><21017|Orders|X>");
    fails(L"EVALUATE \"1 +\"", Classes::kEvaluate, L"and field 'X':\nExpecting Valid Expression\nAt Position 3\n");
    fails(L"", Classes::kEvaluate, L"Empty Expression String");
    fails(L"HIDDEN IF \"{#Nope}\"", Classes::kHiddenIf, L"and field 'X':\nField does not exist within current format");
    fails(L"EVALUATE \"{#X}\"", Classes::kEvaluate, L"cannot reference X due to cyclic dependencies.");
}

TEST_F(DatabaseAccess, EndsTheProcessUnlessItRunsHeadless) {
    Add(L"Loose", {Fixtures::Number(L"Key")}, -1);
    ExecutionState::Instance().set_IsRunningHeadless(false);
    for (const wchar_t* text : {L"", L"EVALUATE \"(\"", L"EVALUATE \"{#Key}\""}) {
        store_.SetDbClassString(0, 0, text);
        EXPECT_EXIT(check_database_access(store_, true, nullptr), testing::ExitedWithCode(1), "");
        store_.AddDbClass(0, 0, Classes::kEvaluate);
    }
    EXPECT_EXIT(CompileFail(L"broken"), testing::ExitedWithCode(1), "");
    ExecutionState::Instance().set_IsRunningHeadless(true);
    CompileFail(L"broken");
    EXPECT_EQ(messages_->boxes.back(), (Fixtures::RecordingMessages::Box{L"broken", L"", kMessageStyleError}));
    MessageManager::setInstance(nullptr);
    EXPECT_EQ(check_database_access(store_, true, nullptr), -1) << "without texts for its messages";
}

TEST_F(DatabaseAccess, SharesTheVeryColumnAlongAnyChain) {
    const Class shared = Classes::kAdditionalReference;
    Add(L"Orders", {Fixtures::Number(L"Key"), Real(L"C", L"ADDITIONAL REFERENCE(B)", {shared}),
                    Real(L"B", L"ADDITIONAL REFERENCE(A)", {shared}), Fixtures::Number(L"A"),
                    Matrix(L"M2", L"ADDITIONAL REFERENCE(M1)", {shared}), Matrix(L"M1", L"")});
    ASSERT_EQ(check_database_access(store_, true, nullptr), 0) << Boxes().c_str();
    EXPECT_NE(Column(3), nullptr);
    EXPECT_EQ(Column(1), Column(3));
    EXPECT_EQ(Column(2), Column(3));
    EXPECT_EQ(store_.GetFieldInfo(0, 4)->matrixColumn, store_.GetFieldInfo(0, 5)->matrixColumn);
    EXPECT_NE(store_.GetFieldInfo(0, 5)->matrixColumn, nullptr);
}

TEST_F(DatabaseAccess, MakesOverridesAfterTheirTargetsWhateverTheirOrder) {
    const auto overriding = [](const wchar_t* name, const wchar_t* text) -> Field {
        return {.name = name, .classes = {Classes::kOverride}, .default_value = -1.0, .classification = text};
    };
    const auto sharing = [](const wchar_t* name, const wchar_t* text) {
        return Real(name, text, {Classes::kAdditionalReference});
    };
    Add(L"Orders", {Fixtures::Number(L"Key"), overriding(L"C", L"OVERRIDE(B)"), overriding(L"B", L"OVERRIDE(A)"),
                    Fixtures::Number(L"A"), overriding(L"Self", L"OVERRIDE(Self)"),
                    overriding(L"Ring1", L"OVERRIDE(Ring2)"), overriding(L"Ring2", L"OVERRIDE(Ring1)"),
                    sharing(L"Mixed1", L"ADDITIONAL REFERENCE(Mixed2)"), overriding(L"Mixed2", L"OVERRIDE(Mixed1)"),
                    overriding(L"Other1", L"OVERRIDE(Other2)"), sharing(L"Other2", L"ADDITIONAL REFERENCE(Other1)")});
    for (int round = 0; round < 2; ++round) { // the second one over the columns of the first
        ASSERT_EQ(check_database_access(store_, true, nullptr), 0) << Boxes().c_str();
        store_.SetCurrentDbSize(0, 1);
        store_.SetDbValue(0, 1, 0, 5.0);
        EXPECT_EQ(store_.GetDbValue(0, 2, 0), 5.0);
        EXPECT_EQ(store_.GetDbValue(0, 3, 0), 5.0);
        for (std::int32_t field = 4; field < store_.GetDbFields(0); ++field) {
            store_.SetDbValue(0, field, 0, 2.0 + field);
            EXPECT_EQ(store_.GetDbValue(0, field, 0), 2.0 + field) << field;
        }
        EXPECT_EQ(Column(7), Column(8));
        EXPECT_EQ(Column(9), Column(10));
        EXPECT_EQ(store_.GetDbTableY(0, 6), 5);
    }
}

// Orders with an extension, Lines with one field.
class JoinTables : public ConfigurationTest::DefinitionFixture {
protected:
    JoinTables() {
        Add(L"Lines", {Real(L"Id", L"UNIQUE")});
        Add(L"Orders", {Real(L"Key", L"ORDER KEY")});
    }

    void Name(const wchar_t* parent) { store_.SetAssociatedTable(0, KSDLL_AddText(parent), true); }

    bool Join() { return JoinAssociatedTables(store_, L"Plant"); }
};

// By name, too: a host's own test of a filled store shows that.
TEST_F(JoinTables, LooksForAParentBehindTheChildThenBeforeItAndNeverInIt) {
    SetExtension(1, L"dat");
    Add(L"Stock", {Real(L"Key", L"ORDER KEY | STOCK")});
    const auto parent_of = [&](std::int32_t child, const wchar_t* classification) {
        store_.SetAssociatedTable(child, KSDLL_AddText(classification), true);
        EXPECT_TRUE(Join()) << Boxes().c_str();
        return store_.GetAssociateTableNumber(child);
    };
    EXPECT_EQ(parent_of(0, L"BY CLASSIFICATION ( ORDER KEY )"), 1);
    EXPECT_EQ(std::wstring(store_.GetDbExtension(0)), L"dat");
    EXPECT_EQ(store_.GetFormatInfo(1)->childTables, std::vector<std::int32_t>{0});
    store_.SetDbExtension(0, nullptr);
    store_.SetDbExtension(1, nullptr);
    EXPECT_EQ(parent_of(1, L"BY CLASSIFICATION(ORDER KEY)"), 2);
    EXPECT_EQ(parent_of(1, L"BY CLASSIFICATION(UNIQUE)"), 0);
    EXPECT_EQ(parent_of(2, L"BY CLASSIFICATION(STOCK)"), -1);
}

TEST_F(JoinTables, KeepsAFormatOutOfTheDatabaseWhenItsOptionalParentIsAbsent) {
    Name(L"BY CLASSIFICATION(NO SUCH)");
    EXPECT_TRUE(Join());
    EXPECT_FALSE(store_.IsAssociatedTable(0));
    EXPECT_TRUE(store_.ClassDefined(0, 0, Classes::kExcludeFromDb));
    EXPECT_TRUE(store_.GetFieldInfo(0, 0)->originalTaken);
    EXPECT_EQ(store_.GetFieldInfo(0, 0)->original.classString, L"UNIQUE | EXCLUDE FROM DB");
    Name(L"BY CLASSIFICATION(NO SUCH)");
    store_.SetDbKey(0, -1);
    EXPECT_TRUE(Join());
    EXPECT_FALSE(store_.IsAssociatedTable(0));
}

TEST_F(JoinTables, RefusesAMissingParentAndAnExtensionOfTheChildsOwn) {
    Name(L"17");
    EXPECT_FALSE(Join());
    ExpectBox(L"<21069|Lines>");
    Name(L"Orders");
    SetExtension(0, L"own");
    EXPECT_FALSE(Join());
    ExpectBox(L"<21109|Lines|Orders>");
}

using BuiltInTables = ConfigurationTest::DefinitionFixture;

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
    EXPECT_FALSE(HelpPopupTableManager::GetHelpText(store_, 7, &text));
    EXPECT_EQ(text, L"untouched");
    store_.SetTableFields(table, 2);
    for (const std::int32_t entry : {0, 1}) {
        store_.SetTableText(table, entry, KSDLL_AddText(entry == 0 ? L"first" : L"second"));
        store_.SetTableValue(table, entry, 7.0);
    }
    EXPECT_TRUE(HelpPopupTableManager::GetHelpText(store_, 7, &text));
    EXPECT_EQ(text, L"first");
}

TEST_F(BuiltInTables, SetsUpOnceAProcessAndServesEveryStore) {
    EXPECT_EQ(BuiltInTableManager::FindOrCreateStringTable(store_, L"A"), 0);
    ASSERT_EQ(log_->lines.size(), 2001U);
    EXPECT_EQ(log_->lines[0] + L", " + log_->lines[1] + L", " + log_->lines[2000],
              L"Initialising, Create Table 0, Table 999 Created");
    const auto second = Data::MemoryResident::CreateMemoryResidentData();
    second->CreateTablePointer();
    second->CreateTableFields(0);
    second->SetTableName(0, KSDLL_AddText(L"B")); // by the host
    second->SetTableFields(0, 3);
    EXPECT_EQ(BuiltInTableManager::FindOrCreateStringTable(*second, L"A"), 1);
    EXPECT_EQ(second->GetTableFields(0), 3);
    EXPECT_EQ(BuiltInTableManager::FindOrCreateStringTable(store_, L"a"), 1);
    EXPECT_EQ(log_->lines.size(), 2001U);
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
