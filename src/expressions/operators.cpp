// The operators of numbers and texts.
#include "expressions/operator_kernels.h"

#include <kestrona/expression_functions.h>
#include <kestrona/unicode.h>

namespace Kestrona::Expressions {

using Kernels::Truth;

double Add(double a, double b) {
    return a + b;
}

double Subtract(double a, double b) {
    return a - b;
}

double Multiply(double a, double b) {
    return a * b;
}

double Divide(double a, double b) {
    return Kernels::Quotient{}(a, b);
}

double And(double a, double b) {
    return Truth(Kernels::Both{}(a, b));
}

double Or(double a, double b) {
    return Truth(Kernels::Either{}(a, b));
}

double LessThan(double a, double b) {
    return Truth(a < b);
}

double LessOrEqualTo(double a, double b) {
    return Truth(a <= b);
}

double GreaterThan(double a, double b) {
    return Truth(a > b);
}

double GreaterOrEqualTo(double a, double b) {
    return Truth(a >= b);
}

double IsEqualTo(double a, double b) {
    return Truth(a == b);
}

double IsNotEqualTo(double a, double b) {
    return Truth(a != b);
}

double Positive(double x) {
    return x;
}

double Negative(double x) {
    return -x;
}

double Not(double x) {
    return Truth(x == 0.0);
}

double StrEqualTo(const std::wstring& a, const std::wstring& b) {
    return Truth(a == b);
}

double StrNotEqualTo(const std::wstring& a, const std::wstring& b) {
    return Truth(a != b);
}

double StrLessThan(const std::wstring& a, const std::wstring& b) {
    return Truth(CompareUtf16(a, b) < 0);
}

double StrLessOrEqual(const std::wstring& a, const std::wstring& b) {
    return Truth(CompareUtf16(a, b) <= 0);
}

double StrGreaterThan(const std::wstring& a, const std::wstring& b) {
    return Truth(CompareUtf16(a, b) > 0);
}

double StrGreaterOrEqual(const std::wstring& a, const std::wstring& b) {
    return Truth(CompareUtf16(a, b) >= 0);
}

double StrDoesContain(const std::wstring& a, const std::wstring& b) {
    return Truth(b.find(a) != std::wstring::npos);
}

} // namespace Kestrona::Expressions
