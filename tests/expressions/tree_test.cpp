// Random trees against an evaluator of the test's own.
#include "expressions/tree_builder.h"
#include "fixtures/recording_services.h"
#include "fixtures/schema.h"

#include <kestrona/store.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <random>

namespace Kestrona::Expressions {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

// A tree and what it has to give, told by the test: the two share no code.
struct Pair {
    Expression tree;
    std::function<double(std::int32_t record)> value;
};

class Trees : public testing::Test {
protected:
    static constexpr std::int32_t kRecords = 1200;
    static constexpr std::int32_t kFields = 5;

    void FillNumbers() {
        numbers = AddTable(*store, L"Numbers",
                           {Number(L"Key"), Number(L"A"), Integer(L"B"), Number(L"C", 2.5), Toggle(L"D")}, kRecords);
        for (std::int32_t record = 0; record < kRecords; ++record) {
            for (std::int32_t field = 0; field < kFields; ++field) {
                store->SetDbValue(numbers, field, record, AnyNumber());
            }
        }
    }

    double AnyNumber() {
        constexpr double kNumbers[] = {0.0,
                                       -0.0,
                                       1.0,
                                       -1.0,
                                       2.0,
                                       2.5,
                                       -2.5,
                                       0.1,
                                       1e9,
                                       3e9,
                                       -3e9,
                                       1e300,
                                       7.0,
                                       100.0,
                                       std::numeric_limits<double>::quiet_NaN(),
                                       std::numeric_limits<double>::infinity()};
        return kNumbers[Any(std::size(kNumbers))];
    }

    std::size_t Any(std::size_t count) { return std::uniform_int_distribution<std::size_t>(0, count - 1)(random); }

    Pair AnyTree(int depth);
    Pair AnyLeaf();
    Pair AnyBinary(int depth);
    Pair AnyUnary(int depth);
    Pair AnyList(int depth);

    FreshProcess process;
    RecordingMessages& messages = InstallRecordingMessages();
    std::unique_ptr<MemoryResidentData> store = CreateMemoryResidentData();
    std::int32_t numbers = -1;
    std::mt19937 random{20240611};
};

Pair Trees::AnyLeaf() {
    if (Any(3) == 0) {
        const double number = AnyNumber();
        return {Constant(number), [=](std::int32_t) {
                    return number;
                }};
    }
    const auto field = static_cast<std::int32_t>(Any(kFields));
    const auto type = Any(2) == 0 ? ExpressionFieldType::Number : ExpressionFieldType::Unmarked;
    return {Cell(numbers, field, type), [=, this](std::int32_t record) {
                return store->GetDbColumn(numbers, field)->GetValue(record);
            }};
}

Pair Trees::AnyBinary(int depth) {
    struct Told {
        const wchar_t* symbol;
        double (*value)(double, double);
    };

    static const Told kTold[] = {
        {L"+",
         [](double a, double b) {
             return a + b;
         }},
        {L"-",
         [](double a, double b) {
             return a - b;
         }},
        {L"*",
         [](double a, double b) {
             return a * b;
         }},
        {L"/",
         [](double a, double b) {
             return b < 0 || b > 0 || std::isnan(b) ? a / b : 0.0;
         }},
        {L"%",
         [](double a, double b) {
             return fmod(a, b);
         }},
        {L"^",
         [](double a, double b) {
             return pow(a, b);
         }},
        {L"<",
         [](double a, double b) {
             return a < b ? 1.0 : 0.0;
         }},
        {L"<=",
         [](double a, double b) {
             return a <= b ? 1.0 : 0.0;
         }},
        {L">",
         [](double a, double b) {
             return b < a ? 1.0 : 0.0;
         }},
        {L">=",
         [](double a, double b) {
             return b <= a ? 1.0 : 0.0;
         }},
        {L"==",
         [](double a, double b) {
             return a <= b && b <= a ? 1.0 : 0.0;
         }},
        {L"!=",
         [](double a, double b) {
             return a <= b && b <= a ? 0.0 : 1.0;
         }},
        {L"&&",
         [](double a, double b) {
             return std::fpclassify(a) == FP_ZERO || std::fpclassify(b) == FP_ZERO ? 0.0 : 1.0;
         }},
        {L"||",
         [](double a, double b) {
             return std::fpclassify(a) == FP_ZERO && std::fpclassify(b) == FP_ZERO ? 0.0 : 1.0;
         }},
    };
    const Told& told = kTold[Any(std::size(kTold))];
    const Pair left = AnyTree(depth - 1);
    const Pair right = AnyTree(depth - 1);
    return {Binary(left.tree, told.symbol, right.tree), [=, value = told.value](std::int32_t record) {
                return value(left.value(record), right.value(record));
            }};
}

Pair Trees::AnyUnary(int depth) {
    struct Told {
        std::span<const NamedFunction<UnaryFunction>> table;
        const wchar_t* name;
        double (*value)(double);
    };

    static const Told kTold[] = {
        {UnaryOperators(), L"-",
         [](double x) {
             return -1.0 * x;
         }},
        {UnaryOperators(), L"!",
         [](double x) {
             return x < 0 || x > 0 || std::isnan(x) ? 0.0 : 1.0;
         }},
        {UnaryFunctions(), L"ABS",
         [](double x) {
             return std::signbit(x) ? -x : x;
         }},
        {UnaryFunctions(), L"TRUNC",
         [](double x) {
             return floor(x);
         }},
        {UnaryFunctions(), L"CEIL",
         [](double x) {
             return -floor(-x);
         }},
        {UnaryFunctions(), L"SQRT",
         [](double x) {
             return sqrt(x);
         }},
        {UnaryFunctions(), L"FRAC",
         [](double x) {
             return fabs(x) < 2147483648.0 ? x - (trunc(x) + 0.0) : x + 2147483648.0;
         }},
    };
    const Told& told = kTold[Any(std::size(kTold))];
    const Pair operand = AnyTree(depth - 1);
    return {Make<UnaryExpression>(Named(told.table, told.name), operand.tree),
            [=, value = told.value](std::int32_t record) {
                return value(operand.value(record));
            }};
}

// A list function of the host's own, which has to get its vector.
double Spread(const std::vector<double>& values) {
    return values.back() - values.front() + static_cast<double>(values.size());
}

Pair Trees::AnyList(int depth) {
    std::vector<Pair> pairs;
    std::vector<Expression> elements;
    for (std::size_t count = 1 + Any(4); count > 0; --count) {
        pairs.push_back(AnyTree(depth - 1));
        elements.push_back(pairs.back().tree);
    }
    const std::size_t kind = Any(3);
    const ListFunction functions[] = {&Func_Min, &Func_Max, &Spread};
    return {Make<ListExpression>(elements, functions[kind]), [=](std::int32_t record) {
                std::vector<double> values;
                for (const Pair& pair : pairs) {
                    values.push_back(pair.value(record));
                }
                double running = values.front();
                for (const double value : values) {
                    if (kind == 0 ? value < running : value > running) {
                        running = value;
                    }
                }
                return kind == 2 ? Spread(values) : running;
            }};
}

Pair Trees::AnyTree(int depth) {
    if (depth == 0 || Any(8) == 0) {
        return AnyLeaf();
    }
    const std::size_t kind = Any(8);
    return kind < 5 ? AnyBinary(depth) : kind < 7 ? AnyUnary(depth) : AnyList(depth);
}

bool IsSame(double a, double b) {
    return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b);
}

TEST_F(Trees, GiveWhatAnIndependentEvaluatorGives) {
    FillNumbers();
    std::vector<double> block(kRecords);
    for (int round = 0; round < 400; ++round) {
        Pair pair = AnyTree(5);
        pair.tree.EvaluateBlock(*store, 0, kRecords, block.data());
        for (std::int32_t record = 0; record < kRecords; record += 7) {
            const double expected = pair.value(record);
            ASSERT_TRUE(IsSame(pair.tree.Evaluate(*store, record, -1, nullptr), expected)) << round << " " << record;
            ASSERT_TRUE(IsSame(block[static_cast<std::size_t>(record)], expected)) << round << " " << record;
        }
        double scratch[4] = {};
        pair.tree.EvaluateBlock(*store, kFirstScratchRecord, 4, scratch);
        ASSERT_TRUE(IsSame(scratch[2], pair.value(kFirstScratchRecord + 2))) << round;
    }
    EXPECT_TRUE(messages.boxes.empty());
}

} // namespace

} // namespace Kestrona::Expressions
