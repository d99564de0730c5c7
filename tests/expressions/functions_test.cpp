// The operators and functions of the expression language: values at their edges, and who is who.
#include "expressions/operator_tables.h"
#include "expressions/tree_builder.h"

#include <kestrona/unicode.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace Kestrona::Expressions {

namespace {

using namespace Fixtures;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// Equal to the sign of a zero; any NaN is every NaN.
::testing::AssertionResult Same(double expected, double actual) {
    const bool same = std::isnan(expected) ? std::isnan(actual)
                                           : expected == actual && std::signbit(expected) == std::signbit(actual);
    return same ? ::testing::AssertionSuccess() : ::testing::AssertionFailure() << actual << ", expected " << expected;
}

// The other functions and all operators are those of random expressions, too.
TEST(Functions, GiveTheirValues) {
    struct Case {
        const wchar_t* name;
        double x, expected;
    };

    for (const auto& [name, x, expected] : {Case{L"FRAC", 2147483647.5, 0.5},
                                            {L"FRAC", -2147483649.5, -1.5},
                                            {L"ALN", 0, 1},
                                            {L"ALOG", 3, 1000},
                                            {L"COS", 0, 1},
                                            {L"SIN", 0, 0},
                                            {L"TAN", 0, 0},
                                            {L"ACOS", 1, 0},
                                            {L"ASIN", 2, kNan},
                                            {L"ATAN", 0, 0}}) {
        EXPECT_TRUE(Same(expected, Named(UnaryFunctions(), name)(x))) << ToUtf8(name) << " " << x;
    }
    // The first value stands where the next one compares as neither.
    const auto least = Named(ListFunctions(), L"MIN");
    const auto most = Named(ListFunctions(), L"MAX");
    EXPECT_TRUE(Same(-1, least({3, -1, 2})) && Same(3, most({-1, 3, 2})) && Same(4, least({4})));
    EXPECT_TRUE(Same(kNan, least({kNan, 1, 2})) && Same(2, most({1, kNan, 2})) && Same(0.0, most({0.0, -0.0})));
    EXPECT_TRUE(std::signbit(Negative(kNan)) != std::signbit(kNan));
}

TEST(StringOperators, CompareByUtf16CodeUnit) {
    // Texts in their order. U+FFFD stands behind U+1F600 in UTF-16.
    const std::wstring ordered[] = {L"", L"A", L"AB", L"Ab", L"B", L"a", L"\u00e4", L"\U0001f600", L"\ufffd"};
    for (const std::wstring& a : ordered) {
        for (const std::wstring& b : ordered) {
            const bool less = &a < &b;
            const bool equal = &a == &b;
            EXPECT_EQ(Named(StringOperators(), L"==")(a, b), equal);
            EXPECT_EQ(Named(StringOperators(), L"!=")(a, b), !equal);
            EXPECT_EQ(Named(StringOperators(), L"<")(a, b), less);
            EXPECT_EQ(Named(StringOperators(), L"<=")(a, b), less || equal);
            EXPECT_EQ(Named(StringOperators(), L">")(a, b), !less && !equal);
            EXPECT_EQ(Named(StringOperators(), L">=")(a, b), !less);
        }
    }
    const auto contained = Named(StringOperators(), L"@");
    EXPECT_TRUE(contained(L"", L"") == 1.0 && contained(L"", L"x") == 1.0 && contained(L"bc", L"abcd") == 1.0);
    EXPECT_TRUE(contained(L"abcd", L"bc") == 0.0 && contained(L"B", L"abc") == 0.0);
}

// Each predicate knows its own function and no other one, null included.
template <typename Function>
void ExpectTheDiagonal(const std::vector<std::pair<Function, bool (*)(Function)>>& pairs) {
    for (const auto& [function, own] : pairs) {
        EXPECT_FALSE(own(nullptr));
        for (const auto& [other, check] : pairs) {
            EXPECT_EQ(check(function), function == other) << &other - &pairs.front().first;
        }
        EXPECT_TRUE(own(function));
    }
}

TEST(Functions, AreToldApartByTheirPredicates) {
    ExpectTheDiagonal<BinaryFunction>({{&Add, &CheckAdd},
                                       {&Subtract, &CheckSubtract},
                                       {&Multiply, &CheckMultiply},
                                       {&Divide, &CheckDivide},
                                       {&And, &CheckAnd},
                                       {&Or, &CheckOr},
                                       {&LessThan, &CheckLessThan},
                                       {&LessOrEqualTo, &CheckLessOrEqualTo},
                                       {&GreaterThan, &CheckGreaterThan},
                                       {&GreaterOrEqualTo, &CheckGreaterOrEqualTo},
                                       {&IsEqualTo, &CheckIsEqualTo},
                                       {&IsNotEqualTo, &CheckIsNotEqualTo}});
    ExpectTheDiagonal<UnaryFunction>({{&Positive, &CheckPositive},
                                      {&Negative, &CheckNegative},
                                      {&Not, &CheckNot},
                                      {&Func_Frac, &CheckFunc_Frac},
                                      {&Func_Rnd, &CheckFunc_Rnd},
                                      {&Func_Alog, &CheckFunc_Alog}});
    ExpectTheDiagonal<ListFunction>({{&Func_Min, &CheckFunc_Min}, {&Func_Max, &CheckFunc_Max}});
    ExpectTheDiagonal<TextFunction>({{&StrEqualTo, &CheckStrEqualTo},
                                     {&StrNotEqualTo, &CheckStrNotEqualTo},
                                     {&StrLessThan, &CheckStrLessThan},
                                     {&StrLessOrEqual, &CheckStrLessOrEqual},
                                     {&StrGreaterThan, &CheckStrGreaterThan},
                                     {&StrGreaterOrEqual, &CheckStrGreaterOrEqual},
                                     {&StrDoesContain, &CheckStrDoesContain}});
}

} // namespace

} // namespace Kestrona::Expressions
