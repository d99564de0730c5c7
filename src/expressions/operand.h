#pragma once

#include "expressions/field_reads.h"

#include <kestrona/expression_tree.h>

#include <cstdint>
#include <string>

namespace Kestrona::Expressions {

// Evaluates an operand: constants and stored numbers at once, the rest by a call of the node.
inline double EvaluateOperand(const Expression& operand, IMemoryResidentData& store, std::int32_t record,
                              std::int32_t matrix_index, std::wstring* text) {
    const OperandForm& form = operand.Shape();
    switch (form.kind) {
    case OperandForm::Kind::Constant:
        return form.number;
    case OperandForm::Kind::Cell:
        return ReadRaw(store, form.format, form.field, record, matrix_index);
    case OperandForm::Kind::Node:
        break;
    }
    return operand.Inner()->Evaluate(store, record, matrix_index, text);
}

} // namespace Kestrona::Expressions
