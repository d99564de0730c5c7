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
constexpr double kInf = std::numeric_limits<double>::infinity();

// Equal to the sign of a zero; any NaN is every NaN.
::testing::AssertionResult Same(double expected, double actual) {
    const bool same = std::isnan(expected) ? std::isnan(actual)
                                           : expected == actual && std::signbit(expected) == std::signbit(actual);
    return same ? ::testing::AssertionSuccess() : ::testing::AssertionFailure() << actual << ", expected " << expected;
}

TEST(Operators, TreatZeroNanAndEqualValuesAsTold) {
    struct Case {
        const wchar_t* symbol;
        double a, b, expected;
    };

    const Case cases[] = {
        {L"+", 0.1, 0.2, 0.1 + 0.2},
        {L"-", 1, kInf, -kInf},
        {L"*", -1, 0, -0.0},
        {L"/", 1, 0, 0},
        {L"/", -1, -0.0, 0},
        {L"/", kNan, 0, 0},
        {L"/", 1, kNan, kNan},
        {L"/", 7, 2, 3.5},
        {L"%", 5, 0, kNan},
        {L"%", -7, 3, -1},
        {L"%", 7.5, -2, 1.5},
        {L"^", 2, 10, 1024},
        {L"^", 0, 0, 1},
        {L"^", -8, 1.0 / 3, kNan},
        {L"&&", 2, -1, 1},
        {L"&&", 0, 1, 0},
        {L"&&", 1, -0.0, 0},
        {L"&&", kNan, 1, 1},
        {L"&&", kNan, 0, 0},
        {L"||", 0, -0.0, 0},
        {L"||", 0, kNan, 1},
        {L"||", 0.5, 0, 1},
        {L"<", 1, 2, 1},
        {L"<", 2, 2, 0},
        {L"<", kNan, 2, 0},
        {L"<=", 2, 2, 1},
        {L"<=", 2, kNan, 0},
        {L"<=", 3, 2, 0},
        {L">", 2, 1, 1},
        {L">", 2, 2, 0},
        {L">", kNan, kNan, 0},
        {L">=", 2, 2, 1},
        {L">=", kNan, kNan, 0},
        {L">=", 1, 2, 0},
        {L"==", 0, -0.0, 1},
        {L"==", kNan, kNan, 0},
        {L"==", 0.1 + 0.2, 0.3, 0},
        {L"!=", kNan, kNan, 1},
        {L"!=", 1, 1, 0},
        {L"!=", 1, 2, 1},
    };
    for (const Case& c : cases) {
        EXPECT_TRUE(Same(c.expected, Operator(c.symbol)(c.a, c.b))) << c.a << " " << ToUtf8(c.symbol) << " " << c.b;
    }
}

TEST(Functions, RoundCutAndPassOverAsTold) {
    struct Case {
        const wchar_t* name;
        double x, expected;
    };

    const Case functions[] = {
        {L"ABS", -2.5, 2.5},
        {L"TRUNC", -2.5, -3},
        {L"TRUNC", 2.5, 2},
        {L"TRUNC", -1.5, -2},
        {L"CEIL", -2.5, -2},
        {L"FRAC", -2.5, -0.5},
        {L"FRAC", 2.25, 0.25},
        {L"FRAC", 2147483647.5, 0.5},
        {L"FRAC", 2147483648.0, 4294967296.0},
        {L"FRAC", -2147483649.5, -1.5},
        {L"FRAC", 3e9, 3e9 + 2147483648.0},
        {L"FRAC", kNan, kNan},
        {L"RND", 2.5, 3},
        {L"RND", -2.5, -3},
        {L"RND", 0, -0.0},
        {L"RND", 0.4, 0},
        {L"RND", -0.4, -0.0},
        {L"RND", kNan, kNan},
        {L"SQRT", 6.25, 2.5},
        {L"SQRT", -1, kNan},
        {L"LN", 1, 0},
        {L"LN", 0, -kInf},
        {L"LOG", 1000, 3},
        {L"ALN", 0, 1},
        {L"ALOG", 3, 1000},
        {L"COS", 0, 1},
        {L"SIN", 0, 0},
        {L"TAN", 0, 0},
        {L"ACOS", 1, 0},
        {L"ASIN", 2, kNan},
        {L"ATAN", 0, 0},
    };
    for (const Case& c : functions) {
        EXPECT_TRUE(Same(c.expected, Named(UnaryFunctions(), c.name)(c.x))) << ToUtf8(c.name) << " " << c.x;
    }
    const Case prefixes[] = {{L"+", -2, -2},  {L"-", 0, -0.0},   {L"-", -0.0, 0}, {L"-", 3, -3},
                             {L"!", -0.0, 1}, {L"!", kNan, 0.0}, {L"!", 0.1, 0}};
    for (const Case& c : prefixes) {
        EXPECT_TRUE(Same(c.expected, Named(UnaryOperators(), c.name)(c.x))) << ToUtf8(c.name) << c.x;
    }
    EXPECT_TRUE(std::signbit(Negative(kNan)) != std::signbit(kNan));

    struct ListCase {
        std::vector<double> values;
        double min, max;
    };

    for (const ListCase& c : {ListCase{{4}, 4, 4},
                              {{3, -1, 2}, -1, 3},
                              {{kNan, 1, 2}, kNan, kNan},
                              {{1, kNan, 2}, 1, 2},
                              {{0.0, -0.0}, 0.0, 0.0},
                              {{-kInf, kInf}, -kInf, kInf}}) {
        EXPECT_TRUE(Same(c.min, Named(ListFunctions(), L"MIN")(c.values)));
        EXPECT_TRUE(Same(c.max, Named(ListFunctions(), L"MAX")(c.values)));
    }
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
