#pragma once

#include "expressions/operator_tables.h"

#include <kestrona/expression_tree.h>

#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Trees for tests, without a parser.
namespace Kestrona::Fixtures {

using Expressions::Expression;
using Expressions::ExpressionFieldType;

template <typename Node, typename... Arguments>
Expression Make(Arguments&&... arguments) {
    return Expression(std::make_shared<Node>(std::forward<Arguments>(arguments)...));
}

template <typename Function>
Function Named(std::span<const Expressions::NamedFunction<Function>> table, std::wstring_view name) {
    for (const auto& entry : table) {
        if (entry.name == name) {
            return entry.function;
        }
    }
    throw std::invalid_argument("no such function");
}

// The function of a binary operator of numbers, whatever its level.
inline Expressions::BinaryFunction Operator(std::wstring_view symbol) {
    using namespace Expressions;
    for (const auto table : {EqualityOperators(), RelationalOperators(), LogicalOperators(), AdditiveOperators(),
                             MultiplicativeOperators()}) {
        for (const auto& entry : table) {
            if (entry.name == symbol) {
                return entry.function;
            }
        }
    }
    throw std::invalid_argument("no such operator");
}

inline Expression Constant(double value) {
    return Make<Expressions::ConstantExpression>(value);
}

inline Expression Cell(std::int32_t format, std::int32_t field,
                       ExpressionFieldType type = ExpressionFieldType::Number) {
    return Make<Expressions::VariableExpression>(Expressions::FieldReference{type, format, field});
}

inline Expression Binary(Expression left, std::wstring_view symbol, Expression right) {
    return Make<Expressions::BinaryExpression>(std::move(left), std::move(right), Operator(symbol));
}

using Part = std::shared_ptr<Expressions::AbstractString>;

inline Part Literal(const std::wstring& text) {
    return std::make_shared<Expressions::LiteralString>(text);
}

inline Part CellText(std::int32_t format, std::int32_t field, ExpressionFieldType type) {
    return std::make_shared<Expressions::FieldString>(Expressions::FieldReference{type, format, field});
}

inline Expressions::StringListExpression Joined(std::vector<Part> parts) {
    return Expressions::StringListExpression(std::move(parts));
}

} // namespace Kestrona::Fixtures
