// Reads of fields and script variables, as numbers and as texts.
#include "expressions/tree_builder.h"
#include "fixtures/store_test.h"

namespace Kestrona::Expressions {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

const wchar_t* const kNoNumber = L"Evaluation Error: Could not convert field string to double";

class FieldReads : public RecordedStoreTest {
protected:
    double Evaluate(Expression tree, std::int32_t record, std::wstring* text = nullptr) {
        return KSDLL_EvaluateExpression(*store, record, &tree, text);
    }

    std::wstring TextOf(StringListExpression list, std::int32_t record) {
        std::wstring text = L"before";
        EXPECT_EQ(Evaluate(Make<StringListExpression>(std::move(list)), record, &text), 0.0);
        return text;
    }

    void SetUp() override {
        Field plain = Number(L"Plain text number"); // no text column, the type of a reference
        plain.type = TypeBit::kReference;
        Field dual = Number(L"Dual"); // a number with a text of its own
        dual.classes = {Classes::kFreeFormat};
        Field list{.name = L"List", .type = TypeBit::kMatrix};
        format = AddTable(*store, L"Orders", {Number(L"Key"), Text(L"Cost"), Number(L"Amount"), plain, dual, list}, 4);
        const wchar_t* const costs[] = {L"12.5", L"abc", L"", L" 1"};
        for (std::int32_t record = 0; record < 4; ++record) {
            store->SetDbString(format, 1, record, costs[record]);
            store->SetDbValue(format, 2, record, 0.1 + record);
            store->SetDbValue(format, 3, record, 3.0 + record);
            store->SetDbValue(format, 4, record, 7.0);
            store->SetDbString(format, 4, record, L"1e3");
        }
    }

    std::int32_t format = -1;
};

TEST_F(FieldReads, NumbersComeFromTheCellOrFromItsText) {
    constexpr auto kNumber = ExpressionFieldType::Number;
    constexpr auto kText = ExpressionFieldType::Text;
    constexpr auto kUnmarked = ExpressionFieldType::Unmarked;

    struct Case {
        std::int32_t field;
        ExpressionFieldType type;
        std::int32_t record;
        double expected;
        bool reported;
    };

    for (const Case& c : {Case{1, kText, 0, 12.5, false},
                          {1, kUnmarked, 0, 12.5, false},
                          {1, kNumber, 0, 0.0, false},
                          {1, kText, 1, 0.0, true},
                          {1, kUnmarked, 2, 0.0, true},
                          {1, kText, 3, 0.0, true},
                          {2, kUnmarked, 0, 0.1, false},
                          {2, kNumber, 3, 3.1, false},
                          {2, kText, 0, 0.1, false},
                          {3, kUnmarked, 0, 3.0, false},
                          {3, kNumber, 1, 4.0, false},
                          {4, kText, 0, 1000.0, false},
                          {4, kUnmarked, 0, 7.0, false},
                          {4, kNumber, 0, 7.0, false}}) {
        logger.lines.clear();
        EXPECT_EQ(Evaluate(Cell(format, c.field, c.type), c.record), c.expected) << c.field << " " << c.record;
        EXPECT_EQ(logger.lines, c.reported ? std::vector<std::wstring>{kNoNumber} : std::vector<std::wstring>());
        double one = -5.0;
        Cell(format, c.field, c.type).EvaluateBlock(*store, c.record, 1, &one);
        EXPECT_EQ(one, c.expected) << c.field << " " << c.record;
    }
}

TEST_F(FieldReads, TextsAreStoredOnesOrNumbersInSeventeenDigits) {
    constexpr auto kNumber = ExpressionFieldType::Number;
    constexpr auto kText = ExpressionFieldType::Text;
    constexpr auto kUnmarked = ExpressionFieldType::Unmarked;
    EXPECT_EQ(TextOf(Joined({CellText(format, 1, kText)}), 1), L"abc");
    EXPECT_EQ(TextOf(Joined({CellText(format, 1, kUnmarked)}), 2), L"");
    EXPECT_EQ(TextOf(Joined({CellText(format, 1, kNumber)}), 1), L"0");
    EXPECT_EQ(TextOf(Joined({CellText(format, 2, kUnmarked)}), 0), L"0.10000000000000001");
    EXPECT_EQ(TextOf(Joined({CellText(format, 4, kText)}), 0), L"1e3");
    EXPECT_EQ(TextOf(Joined({CellText(format, 4, kUnmarked)}), 0), L"7");
    EXPECT_EQ(
        TextOf(Joined({Literal(L"<"), CellText(format, 1, kText), CellText(format, 4, kNumber), Literal(L">")}), 0),
        L"<12.57>");
    EXPECT_EQ(TextOf(Joined({}), 0), L"");
    EXPECT_EQ(Evaluate(Make<StringListExpression>(Joined({Literal(L"x")})), 0, nullptr), 0.0);
}

TEST_F(FieldReads, ComparisonsOfTextsLeaveTheCallersTextAlone) {
    std::wstring text = L"kept";
    const auto compare = [&](std::vector<Part> left, const wchar_t* symbol, std::vector<Part> right) {
        return Evaluate(Make<StringBinaryExpression>(Joined(std::move(left)), Named(StringOperators(), symbol),
                                                     Joined(std::move(right))),
                        1, &text);
    };
    const Part cost = CellText(format, 1, ExpressionFieldType::Text);
    EXPECT_EQ(compare({cost}, L"==", {Literal(L"abc")}), 1.0);
    EXPECT_EQ(compare({Literal(L"b")}, L"@", {Literal(L"x"), cost}), 1.0);
    EXPECT_EQ(compare({cost, cost}, L"<", {cost}), 0.0);
    EXPECT_EQ(compare({}, L"==", {Literal(L"")}), 1.0);
    EXPECT_EQ(text, L"kept");
}

TEST_F(FieldReads, TheRightOperandIsEvaluatedFirstAndTheTextOfTheLeftOneStays) {
    std::wstring text;
    const Expression a = Make<StringListExpression>(Joined({Literal(L"a")}));
    const Expression b = Make<StringListExpression>(Joined({Literal(L"b")}));
    EXPECT_EQ(Evaluate(Binary(a, L"+", b), 0, &text), 0.0);
    EXPECT_EQ(text, L"a");
    EXPECT_EQ(Evaluate(Make<ListExpression>(std::vector{a, b}, &Func_Max), 0, &text), 0.0);
    EXPECT_EQ(text, L"b");
}

TEST_F(FieldReads, AMatrixIndexLeavesFieldsWithoutAMatrixAsTheyAre) {
    Expression sum = Binary(Cell(format, 2), L"+", Cell(format, 5));
    EXPECT_EQ(KSDLL_MatrixEvaluateExpression(*store, 1, 0, &sum, nullptr), 1.1);
    EXPECT_EQ(KSDLL_EvaluateExpression(*store, 1, &sum, nullptr), 1.1);
}

TEST_F(FieldReads, OfScriptVariablesFindTheirRowAtEachEvaluation) {
    const std::int32_t rows =
        AddTable(*store, L"KSEP Script Variables",
                 {Number(L"Key"), Text(L"Name"), Text(L"String Value"), Number(L"Numeric Value")}, 3);
    const auto variable = [&](const wchar_t* name, ExpressionFieldType type) {
        return KSEPVariable{rows, 1, 3, 2, type, name};
    };
    const auto number = [&](const wchar_t* name, ExpressionFieldType type) {
        return Evaluate(Make<KSEPDoubleExpression>(variable(name, type)), 0);
    };
    const auto text = [&](const wchar_t* name, ExpressionFieldType type) {
        return TextOf(Joined({std::make_shared<KSEPStringExpression>(variable(name, type))}), 0);
    };
    constexpr auto kNumber = ExpressionFieldType::Number;
    constexpr auto kText = ExpressionFieldType::Text;
    EXPECT_EQ(number(L"X", kNumber), -1.0);
    for (std::int32_t row : {1, 2}) { // the first of the two counts
        store->SetDbString(rows, 1, row, L"X");
        store->SetDbString(rows, 2, row, row == 1 ? L"2.5" : L"no");
        store->SetDbValue(rows, 3, row, 40.0 + row);
    }
    EXPECT_EQ(number(L"X", kNumber), 41.0);
    EXPECT_EQ(number(L"X", ExpressionFieldType::Unmarked), 41.0);
    EXPECT_EQ(number(L"X", kText), 2.5);
    EXPECT_EQ(number(L"x", kText), -1.0);
    EXPECT_EQ(text(L"X", kText), L"2.5");
    EXPECT_EQ(text(L"X", ExpressionFieldType::Unmarked), L"41");
    EXPECT_EQ(text(L"Y", kText), L"");
    EXPECT_TRUE(logger.lines.empty());
    store->SetDbString(rows, 2, 1, L"no");
    EXPECT_EQ(number(L"X", kText), -1.0);
    EXPECT_EQ(logger.lines, std::vector<std::wstring>{kNoNumber});

    for (const KSEPVariable& broken : {KSEPVariable{-1, -1, -1, -1, kText, L"X"},
                                       {-2, 0, 0, 0, kNumber, L"X"},
                                       {rows, 1, -2, 2, kNumber, L"X"},
                                       {rows, -2, 3, 2, kNumber, L"X"}}) {
        EXPECT_EQ(Evaluate(Make<KSEPDoubleExpression>(broken), 0), -1.0);
        EXPECT_EQ(TextOf(Joined({std::make_shared<KSEPStringExpression>(broken)}), 0), L"");
    }
    EXPECT_TRUE(messages.boxes.empty());
}

} // namespace

} // namespace Kestrona::Expressions
