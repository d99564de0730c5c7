// The shape of trees: handles, visitors, depth.
#include "expressions/tree_builder.h"

#include <kestrona/store.h>

#include <gtest/gtest.h>

#include <memory>

namespace Kestrona::Expressions {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

TEST(Handles, AnEmptyHandleIsZeroAndSoIsNoExpression) {
    const std::unique_ptr<MemoryResidentData> store = CreateMemoryResidentData();
    const auto evaluate = [&](Expression tree) {
        return KSDLL_EvaluateExpression(*store, 0, &tree, nullptr);
    };
    const Expression empty;
    EXPECT_EQ(evaluate(empty), 0.0);
    EXPECT_EQ(evaluate(Binary(empty, L"+", Constant(2))), 2.0);
    EXPECT_EQ(KSDLL_EvaluateExpression(*store, 0, nullptr, nullptr), 0.0);
    EXPECT_EQ(KSDLL_MatrixEvaluateExpression(*store, 0, 3, nullptr, nullptr), 0.0);
    Expression full = Constant(3);
    const Expression moved = std::move(full);
    EXPECT_EQ(evaluate(full), 0.0); // NOLINT(bugprone-use-after-move): a moved-from handle is an empty one
    EXPECT_EQ(evaluate(moved), 3.0);
}

// Writes down the leaves that it meets.
class Leaves : public Visitor {
public:
    void VisitScriptVariable(KSEPVariable& variable) override { met += L"s:" + variable.name + L" "; }

    void VisitFieldReference(FieldReference& reference) override {
        met += L"f:" + std::to_wstring(reference.field) + L" ";
    }

    using Visitor::Visit;

    void Visit(ConstantExpression& node) override { met += L"c:" + std::to_wstring(int(node.Value())) + L" "; }

    void Visit(LiteralString& node) override { met += L"l:" + node.Text() + L" "; }

    std::wstring met;
};

TEST(Visitors, MeetEveryLeafFromLeftToRight) {
    const auto script = [](const wchar_t* name) {
        return KSEPVariable{.name = name};
    };
    const Expression texts =
        Make<StringBinaryExpression>(Joined({Literal(L"x"), CellText(0, 1, ExpressionFieldType::Text)}), &StrEqualTo,
                                     Joined({std::make_shared<KSEPStringExpression>(script(L"T"))}));
    const Expression list = Make<ListExpression>(
        std::vector{Constant(1), Expression(), Make<KSEPDoubleExpression>(script(L"N"))}, &Func_Min);
    Expression root = Binary(Binary(Cell(0, 2), L"*", texts), L"==", Make<UnaryExpression>(&Not, list));
    Leaves leaves;
    root.Accept(leaves);
    EXPECT_EQ(leaves.met, L"f:2 l:x f:1 s:T c:1 s:N ");
    EXPECT_EQ(root.Depth(), 4);
}

TEST(Lists, TakeAFunctionOfTheHost) {
    const auto spread = [](const std::vector<double>& values) {
        return values.back() - values.front() + static_cast<double>(values.size());
    };
    Expression list = Make<ListExpression>(std::vector{Constant(1), Constant(9), Constant(5)}, spread);
    const auto store = CreateMemoryResidentData();
    double block[2] = {};
    list.EvaluateBlock(*store, 0, 2, block);
    EXPECT_TRUE(block[0] == 7.0 && block[1] == 7.0 && list.Evaluate(*store, 0, -1, nullptr) == 7.0);
}

TEST(Depth, ChainsOfAnyLengthAreTakenDownAndSharedPartsStay) {
    Expression chain = Constant(1);
    Expression middle;
    for (int i = 0; i < 1'000'000; ++i) {
        chain = Binary(std::move(chain), L"+", Constant(1));
        if (i == 99) {
            middle = chain;
        }
    }
    EXPECT_EQ(chain.Depth(), 1'000'001);
    chain = Expression();
    auto store = CreateMemoryResidentData();
    EXPECT_EQ(middle.Evaluate(*store, 0, -1, nullptr), 101.0);
}

TEST(Depth, TheDeepestTreesAllowedAreEvaluatedAndVisited) {
    Expression left = Constant(1);
    Expression right = Constant(1);
    for (std::int32_t depth = 1; depth < kMaxTreeDepth; ++depth) {
        left = Binary(std::move(left), L"+", Constant(1));
        right = Binary(Constant(1), L"+", std::move(right));
    }
    auto store = CreateMemoryResidentData();
    for (Expression* tree : {&left, &right}) {
        EXPECT_EQ(tree->Depth(), kMaxTreeDepth);
        EXPECT_EQ(tree->Evaluate(*store, 0, -1, nullptr), double(kMaxTreeDepth));
        double block[3] = {};
        tree->EvaluateBlock(*store, 0, 3, block);
        EXPECT_EQ(block[2], double(kMaxTreeDepth));
        Leaves leaves;
        tree->Accept(leaves);
        EXPECT_EQ(leaves.met.size(), 4u * kMaxTreeDepth);
    }
}

} // namespace

} // namespace Kestrona::Expressions
