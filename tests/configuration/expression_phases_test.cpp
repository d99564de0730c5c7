#include "configuration/definition_fixture.h"

#include <kestrona/definition_load.h>
#include <kestrona/execution_state.h>
#include <kestrona/expression.h>

#include <gtest/gtest.h>

namespace Kestrona::Configuration {

namespace {

using ConfigurationTest::Real;
using Fixtures::Field;

class ExpressionPhases : public ConfigurationTest::DefinitionFixture {
protected:
    std::int32_t AddOrders(const std::wstring& calculated, const std::wstring& hidden = L"0") {
        Field text = Fixtures::Text(L"Label");
        text.classification = L"FREE FORMAT | EVALUATE \"No. {#Key}\"";
        text.classes.push_back(Classes::kEvaluate);
        return Add(L"Orders", {Fixtures::Number(L"Key"), Fixtures::Number(L"Quantity"),
                               Real(L"Sum", L"EVALUATE \"" + calculated + L"\"", {Classes::kEvaluate}), text,
                               Real(L"Gone", L"HIDDEN IF \"" + hidden + L"\"", {Classes::kHiddenIf})});
    }

    std::int32_t Load() { return check_database_access(store_, true, nullptr); }
};

TEST_F(ExpressionPhases, CompileCalculatedAndHiddenFields) {
    AddOrders(L"{#Quantity} * 2", L"{#Sum} > 5");
    ASSERT_EQ(Load(), 0) << testing::PrintToString(Boxes());
    store_.SetCurrentDbSize(0, 1);
    store_.SetDbValue(0, 0, 0, 8);
    store_.SetDbValue(0, 1, 0, 21);
    EXPECT_EQ(store_.GetDbValue(0, 2, 0), 42);
    EXPECT_EQ(store_.GetDbString(0, 3, 0), L"No. 8");
    EXPECT_EQ(KSDLL_EvaluateExpression(store_, 0, store_.GetDbHiddenIfExpression(0, 4), nullptr), 1.0);
    EXPECT_EQ(store_.GetDbEvaluateExpression(0, 1), nullptr);
    EXPECT_EQ(store_.GetDbHiddenIfExpression(0, 2), nullptr);
}

TEST_F(ExpressionPhases, FailForATextThatDoesNotCompile) {
    const std::int32_t format = AddOrders(L"1 +");
    EXPECT_EQ(Load(), -1);
    EXPECT_EQ(messages_->boxes.back().caption, L"Parse Error!");
    EXPECT_NE(Boxes().find(L"and field 'Sum':\nExpecting Valid Expression\nAt Position 3\n"), std::wstring::npos);
    EXPECT_EQ(store_.GetDbColumn(format, 0), nullptr) << "no columns are made";

    store_.SetDbClassString(format, 2, L"EVALUATE \"1\"");
    store_.SetDbClassString(format, 4, L"HIDDEN IF \"{#Nope}\"");
    EXPECT_EQ(Load(), -1);
    EXPECT_NE(Boxes().find(L"and field 'Gone':\nField does not exist within current format - 'Nope'"),
              std::wstring::npos);

    store_.SetDbClassString(format, 4, L"HIDDEN IF \"1\"");
    store_.SetDbClassString(format, 2, L"");
    store_.AddDbClass(format, 2, Classes::kEvaluate);
    EXPECT_EQ(Load(), -1);
    EXPECT_NE(Boxes().find(L"Empty Expression String"), std::wstring::npos);
}

TEST_F(ExpressionPhases, FailForAnUnsoundExpressionAndEndTheProcess) {
    const std::int32_t format = AddOrders(L"{#Sum} + 1");
    EXPECT_EQ(Load(), -1);
    EXPECT_NE(Boxes().find(L"This field cannot reference Sum due to cyclic dependencies."), std::wstring::npos);
    EXPECT_EQ(store_.GetDbColumn(format, 0), nullptr);
    ExecutionState::Instance().set_IsRunningHeadless(false);
    EXPECT_EXIT(Load(), testing::ExitedWithCode(1), "");
    store_.SetDbClassString(format, 2, L"EVALUATE \"(\"");
    EXPECT_EXIT(Load(), testing::ExitedWithCode(1), "");
}

} // namespace

} // namespace Kestrona::Configuration
