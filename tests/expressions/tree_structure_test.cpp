// The shape of trees: handles, visitors, depth.
#include <kestrona/expression_tree.h>
#include <kestrona/store.h>

#include <gtest/gtest.h>

#include <memory>

namespace Kestrona::Expressions {

namespace {

using namespace Data::MemoryResident;

template <typename Node, typename... Arguments>
Expression Make(Arguments&&... arguments) {
    return Expression(std::make_shared<Node>(std::forward<Arguments>(arguments)...));
}

Expression Constant(double value) {
    return Make<ConstantExpression>(value);
}

Expression Sum(Expression left, Expression right) {
    return Make<BinaryExpression>(std::move(left), std::move(right), &Add);
}

TEST(Handles, AnEmptyHandleIsZeroAndSoIsNoExpression) {
    const std::unique_ptr<MemoryResidentData> store = CreateMemoryResidentData();
    const auto evaluate = [&](Expression tree) {
        return KSDLL_EvaluateExpression(*store, 0, &tree, nullptr);
    };
    const Expression empty;
    EXPECT_EQ(evaluate(empty), 0.0);
    EXPECT_EQ(evaluate(Sum(empty, Constant(2))), 2.0);
    EXPECT_EQ(KSDLL_EvaluateExpression(*store, 0, nullptr, nullptr), 0.0);
    EXPECT_EQ(KSDLL_MatrixEvaluateExpression(*store, 0, 3, nullptr, nullptr), 0.0);
    Expression full = Constant(3);
    const Expression moved = std::move(full);
    EXPECT_EQ(evaluate(full), 0.0); // NOLINT(*-use-after-move,*.Move): a moved-from handle is an empty one
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
    const auto field = [](std::int32_t number) {
        return FieldReference{ExpressionFieldType::Text, 0, number};
    };
    const Expression texts = Make<StringBinaryExpression>(
        StringListExpression({std::make_shared<LiteralString>(L"x"), std::make_shared<FieldString>(field(1))}),
        &StrEqualTo, StringListExpression({std::make_shared<KSEPStringExpression>(KSEPVariable{.name = L"T"})}));
    const Expression list = Make<ListExpression>(
        std::vector{Constant(1), Expression(), Make<KSEPDoubleExpression>(KSEPVariable{.name = L"N"})}, &Func_Min);
    Expression root = Sum(Sum(Make<VariableExpression>(field(2)), texts), Make<UnaryExpression>(&Not, list));
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
        chain = Sum(std::move(chain), Constant(1));
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
        left = Sum(std::move(left), Constant(1));
        right = Sum(Constant(1), std::move(right));
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
