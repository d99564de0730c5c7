// The functions that a tree can hold: each is told apart by its own predicate.
#include <kestrona/expression_functions.h>

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace Kestrona::Expressions {

namespace {

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

TEST(Functions, OfListsTakeTheSmallestAndTheLargest) {
    EXPECT_EQ(Func_Min({3.0, -1.0, 2.0}), -1.0);
    EXPECT_EQ(Func_Max({3.0, -1.0, 7.0}), 7.0);
    EXPECT_EQ(Func_Min({5.0}) + Func_Max({5.0}), 10.0);
}

} // namespace

} // namespace Kestrona::Expressions
