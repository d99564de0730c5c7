#pragma once

#include <kestrona/export.h>

#include <string>
#include <vector>

/// \file
/// The operators and functions of the expression language, and predicates that tell which one a node holds.
///
/// A truth value is 1.0 or 0.0. Nodes hold these functions as plain pointers; the operators `%` and `^` and the other
/// functions of the language are those of the C library.

namespace Kestrona::Expressions {

using UnaryFunction = double (*)(double);
using BinaryFunction = double (*)(double, double);
using ListFunction = double (*)(const std::vector<double>&);
using TextFunction = double (*)(const std::wstring&, const std::wstring&);

KS_API double Add(double a, double b);
KS_API double Subtract(double a, double b);
KS_API double Multiply(double a, double b);
/// Returns 0.0 for a divisor equal to 0: that is no error in this language.
KS_API double Divide(double a, double b);

/// A NaN counts as true.
KS_API double And(double a, double b);
KS_API double Or(double a, double b);

/// The comparisons are exact and false for a NaN, but for `IsNotEqualTo`.
KS_API double LessThan(double a, double b);
KS_API double LessOrEqualTo(double a, double b);
KS_API double GreaterThan(double a, double b);
KS_API double GreaterOrEqualTo(double a, double b);
KS_API double IsEqualTo(double a, double b);
KS_API double IsNotEqualTo(double a, double b);

KS_API double Positive(double x);
/// Flips the sign bit, that of a zero or NaN included.
KS_API double Negative(double x);
/// Returns 1.0 for a zero, 0.0 for everything else.
KS_API double Not(double x);

/// Returns x without its integer part of 32 bits. Outside that range, and for a NaN, the part is -2147483648.
KS_API double Func_Frac(double x);
/// Rounds halves away from zero. The result for 0 is a negative zero.
KS_API double Func_Rnd(double x);
/// Returns 10 raised to x.
KS_API double Func_Alog(double x);

/// Returns the smallest element. A NaN that stands first stays, one further on is passed over.
/// Requires: an element.
KS_API double Func_Min(const std::vector<double>& values);
/// Returns the largest element; see `Func_Min`.
KS_API double Func_Max(const std::vector<double>& values);

/// Texts compare by UTF-16 code unit, case-sensitive; on a tie the shorter one comes first.
KS_API double StrEqualTo(const std::wstring& a, const std::wstring& b);
KS_API double StrNotEqualTo(const std::wstring& a, const std::wstring& b);
KS_API double StrLessThan(const std::wstring& a, const std::wstring& b);
KS_API double StrLessOrEqual(const std::wstring& a, const std::wstring& b);
KS_API double StrGreaterThan(const std::wstring& a, const std::wstring& b);
KS_API double StrGreaterOrEqual(const std::wstring& a, const std::wstring& b);
/// Tells whether `a` occurs in `b`; an empty `a` occurs in every text.
KS_API double StrDoesContain(const std::wstring& a, const std::wstring& b);

/// Each predicate tells whether a pointer is the function in its name.
KS_API bool CheckAdd(BinaryFunction function);
KS_API bool CheckSubtract(BinaryFunction function);
KS_API bool CheckMultiply(BinaryFunction function);
KS_API bool CheckDivide(BinaryFunction function);
KS_API bool CheckAnd(BinaryFunction function);
KS_API bool CheckOr(BinaryFunction function);
KS_API bool CheckLessThan(BinaryFunction function);
KS_API bool CheckLessOrEqualTo(BinaryFunction function);
KS_API bool CheckGreaterThan(BinaryFunction function);
KS_API bool CheckGreaterOrEqualTo(BinaryFunction function);
KS_API bool CheckIsEqualTo(BinaryFunction function);
KS_API bool CheckIsNotEqualTo(BinaryFunction function);
KS_API bool CheckPositive(UnaryFunction function);
KS_API bool CheckNegative(UnaryFunction function);
KS_API bool CheckNot(UnaryFunction function);
KS_API bool CheckFunc_Frac(UnaryFunction function);
KS_API bool CheckFunc_Rnd(UnaryFunction function);
KS_API bool CheckFunc_Alog(UnaryFunction function);
KS_API bool CheckFunc_Min(ListFunction function);
KS_API bool CheckFunc_Max(ListFunction function);
KS_API bool CheckStrEqualTo(TextFunction function);
KS_API bool CheckStrNotEqualTo(TextFunction function);
KS_API bool CheckStrLessThan(TextFunction function);
KS_API bool CheckStrLessOrEqual(TextFunction function);
KS_API bool CheckStrGreaterThan(TextFunction function);
KS_API bool CheckStrGreaterOrEqual(TextFunction function);
KS_API bool CheckStrDoesContain(TextFunction function);

} // namespace Kestrona::Expressions
