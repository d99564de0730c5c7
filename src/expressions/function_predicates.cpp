// The predicates that tell which function a node holds.
#include <kestrona/expression_functions.h>

namespace Kestrona::Expressions {

bool CheckAdd(BinaryFunction function) {
    return function == &Add;
}

bool CheckSubtract(BinaryFunction function) {
    return function == &Subtract;
}

bool CheckMultiply(BinaryFunction function) {
    return function == &Multiply;
}

bool CheckDivide(BinaryFunction function) {
    return function == &Divide;
}

bool CheckAnd(BinaryFunction function) {
    return function == &And;
}

bool CheckOr(BinaryFunction function) {
    return function == &Or;
}

bool CheckLessThan(BinaryFunction function) {
    return function == &LessThan;
}

bool CheckLessOrEqualTo(BinaryFunction function) {
    return function == &LessOrEqualTo;
}

bool CheckGreaterThan(BinaryFunction function) {
    return function == &GreaterThan;
}

bool CheckGreaterOrEqualTo(BinaryFunction function) {
    return function == &GreaterOrEqualTo;
}

bool CheckIsEqualTo(BinaryFunction function) {
    return function == &IsEqualTo;
}

bool CheckIsNotEqualTo(BinaryFunction function) {
    return function == &IsNotEqualTo;
}

bool CheckPositive(UnaryFunction function) {
    return function == &Positive;
}

bool CheckNegative(UnaryFunction function) {
    return function == &Negative;
}

bool CheckNot(UnaryFunction function) {
    return function == &Not;
}

bool CheckFunc_Frac(UnaryFunction function) {
    return function == &Func_Frac;
}

bool CheckFunc_Rnd(UnaryFunction function) {
    return function == &Func_Rnd;
}

bool CheckFunc_Alog(UnaryFunction function) {
    return function == &Func_Alog;
}

bool CheckFunc_Min(ListFunction function) {
    return function == &Func_Min;
}

bool CheckFunc_Max(ListFunction function) {
    return function == &Func_Max;
}

bool CheckStrEqualTo(TextFunction function) {
    return function == &StrEqualTo;
}

bool CheckStrNotEqualTo(TextFunction function) {
    return function == &StrNotEqualTo;
}

bool CheckStrLessThan(TextFunction function) {
    return function == &StrLessThan;
}

bool CheckStrLessOrEqual(TextFunction function) {
    return function == &StrLessOrEqual;
}

bool CheckStrGreaterThan(TextFunction function) {
    return function == &StrGreaterThan;
}

bool CheckStrGreaterOrEqual(TextFunction function) {
    return function == &StrGreaterOrEqual;
}

bool CheckStrDoesContain(TextFunction function) {
    return function == &StrDoesContain;
}

} // namespace Kestrona::Expressions
