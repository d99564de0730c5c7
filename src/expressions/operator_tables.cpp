#include "expressions/operator_tables.h"

#include <array>
#include <cmath>

namespace Kestrona::Expressions {

namespace {

using Binary = NamedFunction<BinaryFunction>;
using Unary = NamedFunction<UnaryFunction>;
using List = NamedFunction<ListFunction>;
using Text = NamedFunction<TextFunction>;

// The C library's function among the overloads of its name.
constexpr UnaryFunction Plain(UnaryFunction function) {
    return function;
}

constexpr BinaryFunction PlainBinary(BinaryFunction function) {
    return function;
}

} // namespace

std::span<const Binary> EqualityOperators() {
    static constexpr std::array kTable{Binary{L"==", &IsEqualTo}, Binary{L"!=", &IsNotEqualTo}};
    return kTable;
}

std::span<const Binary> RelationalOperators() {
    static constexpr std::array kTable{Binary{L"<", &LessThan}, Binary{L"<=", &LessOrEqualTo},
                                       Binary{L">", &GreaterThan}, Binary{L">=", &GreaterOrEqualTo}};
    return kTable;
}

std::span<const Binary> LogicalOperators() {
    static constexpr std::array kTable{Binary{L"&&", &And}, Binary{L"||", &Or}};
    return kTable;
}

std::span<const Binary> AdditiveOperators() {
    static constexpr std::array kTable{Binary{L"+", &Add}, Binary{L"-", &Subtract}};
    return kTable;
}

std::span<const Binary> MultiplicativeOperators() {
    static constexpr std::array kTable{Binary{L"*", &Multiply}, Binary{L"/", &Divide},
                                       Binary{L"%", PlainBinary(std::fmod)}, Binary{L"^", PlainBinary(std::pow)}};
    return kTable;
}

std::span<const Unary> UnaryOperators() {
    static constexpr std::array kTable{Unary{L"+", &Positive}, Unary{L"!", &Not}, Unary{L"-", &Negative}};
    return kTable;
}

// TRUNC goes down, also below 0: TRUNC(-1.5) is -2.
std::span<const Unary> UnaryFunctions() {
    static constexpr std::array kTable{
        Unary{L"ABS", Plain(std::fabs)},  Unary{L"COS", Plain(std::cos)},     Unary{L"SIN", Plain(std::sin)},
        Unary{L"TAN", Plain(std::tan)},   Unary{L"ACOS", Plain(std::acos)},   Unary{L"ASIN", Plain(std::asin)},
        Unary{L"ATAN", Plain(std::atan)}, Unary{L"TRUNC", Plain(std::floor)}, Unary{L"FRAC", &Func_Frac},
        Unary{L"RND", &Func_Rnd},         Unary{L"SQRT", Plain(std::sqrt)},   Unary{L"LN", Plain(std::log)},
        Unary{L"LOG", Plain(std::log10)}, Unary{L"ALN", Plain(std::exp)},     Unary{L"ALOG", &Func_Alog},
        Unary{L"CEIL", Plain(std::ceil)}};
    return kTable;
}

std::span<const List> ListFunctions() {
    static constexpr std::array kTable{List{L"MIN", &Func_Min}, List{L"MAX", &Func_Max}};
    return kTable;
}

// "@" reads: the left text is contained in the right one.
std::span<const Text> StringOperators() {
    static constexpr std::array kTable{Text{L"==", &StrEqualTo},        Text{L"!=", &StrNotEqualTo},
                                       Text{L"@", &StrDoesContain},     Text{L">", &StrGreaterThan},
                                       Text{L">=", &StrGreaterOrEqual}, Text{L"<", &StrLessThan},
                                       Text{L"<=", &StrLessOrEqual}};
    return kTable;
}

} // namespace Kestrona::Expressions
