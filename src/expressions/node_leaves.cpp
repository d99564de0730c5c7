// Implements: the nodes that read a constant, a field or a script variable.
#include "expressions/field_reads.h"
#include "expressions/script_variables.h"

#include <kestrona/expression_tree.h>

#include <algorithm>

namespace Kestrona::Expressions {

double ConstantExpression::Evaluate(IMemoryResidentData&, std::int32_t, std::int32_t, std::wstring*) {
    return value_;
}

void ConstantExpression::EvaluateBlock(IMemoryResidentData&, std::int32_t, std::int32_t count, double* out) {
    std::fill_n(out, std::max(count, 0), value_);
}

OperandForm ConstantExpression::Form() const {
    return {.kind = OperandForm::Kind::Constant, .number = value_};
}

double VariableExpression::Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                                    std::wstring*) {
    return ReadNumber(store, reference_, record, matrix_index);
}

void VariableExpression::EvaluateBlock(IMemoryResidentData& store, std::int32_t first, std::int32_t count,
                                       double* out) {
    if (ReadsText(store, reference_)) {
        AbstractExpression::EvaluateBlock(store, first, count, out);
    } else {
        ReadRawBlock(store, reference_.format, reference_.field, first, count, out);
    }
}

OperandForm VariableExpression::Form() const {
    if (reference_.type != ExpressionFieldType::Number) {
        return {};
    }
    return {.kind = OperandForm::Kind::Cell, .format = reference_.format, .field = reference_.field};
}

double KSEPDoubleExpression::Evaluate(IMemoryResidentData& store, std::int32_t, std::int32_t, std::wstring*) {
    return ReadScriptNumber(store, variable_);
}

void LiteralString::Evaluate(IMemoryResidentData&, std::int32_t, std::int32_t, std::wstring* text) {
    *text = text_;
}

void FieldString::Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                           std::wstring* text) {
    ReadText(store, reference_, record, matrix_index, text);
}

void KSEPStringExpression::Evaluate(IMemoryResidentData& store, std::int32_t, std::int32_t, std::wstring* text) {
    *text = ReadScriptText(store, variable_);
}

} // namespace Kestrona::Expressions
