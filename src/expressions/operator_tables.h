#pragma once

#include <kestrona/expression_functions.h>

#include <span>

// The symbols and names of the expression language and the functions that they stand for, one table for each level of
// the grammar. Names of functions stand without the prefix "FUNC_".
namespace Kestrona::Expressions {

template <typename Function>
struct NamedFunction {
    const wchar_t* name;
    Function function;
};

std::span<const NamedFunction<BinaryFunction>> EqualityOperators();
std::span<const NamedFunction<BinaryFunction>> RelationalOperators();
std::span<const NamedFunction<BinaryFunction>> LogicalOperators();
std::span<const NamedFunction<BinaryFunction>> AdditiveOperators();
std::span<const NamedFunction<BinaryFunction>> MultiplicativeOperators();
std::span<const NamedFunction<UnaryFunction>> UnaryOperators();
std::span<const NamedFunction<UnaryFunction>> UnaryFunctions();
// One argument or more.
std::span<const NamedFunction<ListFunction>> ListFunctions();
std::span<const NamedFunction<TextFunction>> StringOperators();

} // namespace Kestrona::Expressions
