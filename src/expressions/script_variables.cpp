#include "expressions/script_variables.h"

#include "expressions/field_reads.h"
#include "platform/numbers.h"

namespace Kestrona::Expressions {

namespace {

constexpr std::int32_t kNoRow = -1;
constexpr double kNoValue = -1.0;

// The field that holds what the variable asks for.
std::int32_t ValueField(const KSEPVariable& variable) {
    return variable.type == ExpressionFieldType::Text ? variable.stringValueField : variable.numericValueField;
}

std::int32_t FindRow(IMemoryResidentData& store, const KSEPVariable& variable) {
    if (variable.format < 0 || variable.nameField < 0 || ValueField(variable) < 0) {
        return kNoRow;
    }
    const std::int32_t rows = store.GetCurrentDbSize(variable.format);
    for (std::int32_t row = 0; row < rows; ++row) {
        if (store.GetDbString(variable.format, variable.nameField, row) == variable.name) {
            return row;
        }
    }
    return kNoRow;
}

} // namespace

double ReadScriptNumber(IMemoryResidentData& store, const KSEPVariable& variable) {
    const std::int32_t row = FindRow(store, variable);
    if (row == kNoRow) {
        return kNoValue;
    }
    if (variable.type == ExpressionFieldType::Text) {
        return ToNumber(store.GetDbString(variable.format, variable.stringValueField, row)).value_or(kNoValue);
    }
    return store.GetDbValue(variable.format, variable.numericValueField, row);
}

std::wstring ReadScriptText(IMemoryResidentData& store, const KSEPVariable& variable) {
    const std::int32_t row = FindRow(store, variable);
    if (row == kNoRow) {
        return {};
    }
    if (variable.type == ExpressionFieldType::Text) {
        return store.GetDbString(variable.format, variable.stringValueField, row);
    }
    return Platform::DoubleToText17(store.GetDbValue(variable.format, variable.numericValueField, row));
}

} // namespace Kestrona::Expressions
