#include "configuration/definition_fixture.h"

#include <kestrona/definition_load.h>

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
    Add(L"Orders", {Fixtures::Number(L"Key"), Real(L"Sum", L"EVALUATE \"1\"", {Classes::kEvaluate}),
                    Real(L"Gone", L"HIDDEN IF \"1\"", {Classes::kHiddenIf})});
    EXPECT_EQ(check_database_access(store_, true, this), 0);
    EXPECT_EQ(log_->lines, (std::vector<std::wstring>{
                               L"About to Check DB Access", L"About to Check DB Relationships", L"Format 0 Field 0",
                               L"Format 0 Field 1", L"Format 0 Field 2", L"About to create data arrays",
                               L"About to check Primary key existance", L"DB Integrety checked out OK"}));
    EXPECT_EQ(feedback_, L"stage 17138 50% ");
    EXPECT_NE(Column(0), nullptr);
}

TEST_F(DatabaseAccess, MakesNoColumnWhenNoneIsWanted) {
    Add(L"Orders", {Fixtures::Number(L"Key"), Fixtures::Text(L"Name")});
    EXPECT_EQ(check_database_access(store_, false, nullptr), 0);
    EXPECT_EQ(Column(0), nullptr);
    EXPECT_EQ(store_.GetDbStringArray(0, 1), nullptr);
}

TEST_F(DatabaseAccess, MissesAPrimaryKeyWhenEverythingElseIsDone) {
    Add(L"Orders", {Fixtures::Number(L"Key")});
    Add(L"Loose", {Fixtures::Number(L"Key"), Fixtures::Number(L"B")}, -1);
    EXPECT_EQ(check_database_access(store_, true, this), -1);
    EXPECT_EQ(Boxes(), L"<21039|Loose>");
    EXPECT_NE(store_.GetDbColumn(1, 1), nullptr);
    EXPECT_EQ(feedback_, L"stage 17138 50% ");
}

TEST_F(DatabaseAccess, CountsOnNoFieldThatIsNotThere) {
    Add(L"Orders", {Fixtures::Number(L"Key")}, 7);
    store_.SetDbFields(0, 9);
    EXPECT_EQ(check_database_access(store_, true, nullptr), -1);
    EXPECT_EQ(Boxes(), L"<21039|Orders>");
    store_.SetDbFields(0, -9);
    EXPECT_EQ(check_database_access(store_, true, nullptr), -1);
}

TEST_F(DatabaseAccess, StopsAtTheFirstFailureOfEachPass) {
    Add(L"Orders", {Fixtures::Number(L"Key"), Real(L"X", L"RELATED FIELD(None)"), Real(L"Y", L"SWITCH(None)")});
    EXPECT_EQ(check_database_access(store_, true, this), -1);
    EXPECT_EQ(messages_->boxes.size(), 1U);
    store_.SetDbClassString(0, 1, L"AUTO RESTRICT(Key)");
    store_.SetDbClassString(0, 2, L"");
    EXPECT_EQ(check_database_access(store_, true, this), -1);
    EXPECT_EQ(messages_->boxes.back().text, L"<21508><21017|Orders|X>");
    EXPECT_EQ(Column(0), nullptr);
}

TEST_F(DatabaseAccess, EndsTheProcessUnlessItRunsHeadless) {
    Add(L"Loose", {Fixtures::Number(L"Key")}, -1);
    ExecutionState::Instance().set_IsRunningHeadless(false);
    EXPECT_EXIT(check_database_access(store_, true, nullptr), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(CompileFail(L"broken"), testing::ExitedWithCode(1), "");
    ExecutionState::Instance().set_IsRunningHeadless(true);
    CompileFail(L"broken");
    EXPECT_EQ(messages_->boxes.back(), (Fixtures::RecordingMessages::Box{L"broken", L"", kMessageStyleError}));
}

TEST_F(DatabaseAccess, WorksWithoutTextsForItsMessages) {
    Add(L"Orders", {Fixtures::Number(L"Key"), Real(L"X", L"DATABASE(Nowhere(A))")});
    MessageManager::setInstance(nullptr);
    EXPECT_EQ(check_database_access(store_, true, nullptr), -1);
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

} // namespace

} // namespace Kestrona::Configuration
