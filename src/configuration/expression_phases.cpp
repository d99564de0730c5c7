#include "configuration/expression_phases.h"

#include "expressions/existing_fields.h"
#include "expressions/parse_expression.h"
#include "platform/wide_c_string.h"

#include <kestrona/classes.h>
#include <kestrona/classification_readers.h>
#include <kestrona/definition_load.h>
#include <kestrona/expression_validation.h>

#include <cstdint>
#include <memory>
#include <string>

namespace Kestrona::Configuration {

using Data::MemoryResident::IMemoryResidentData;
using Expressions::FieldNameTables;

namespace {

class ExpressionPhase {
public:
    explicit ExpressionPhase(IMemoryResidentData& store) : store_(store), names_(store) {}

    bool CompileEvaluate(std::int32_t format, std::int32_t field) {
        store_.SetDbEvaluateExpression(format, field, nullptr);
        if (!store_.ClassDefined(format, field, Classes::kEvaluate)) {
            return true;
        }
        const bool is_string = store_.ClassDefined(format, field, Classes::kFreeFormat);
        auto expression = Compile(format, field, &Parse_EVALUATE, is_string);
        const bool compiled = expression != nullptr;
        store_.SetDbEvaluateExpression(format, field, expression.release());
        return compiled;
    }

    bool CompileHiddenIf(std::int32_t format, std::int32_t field) {
        store_.SetDbHiddenIfExpression(format, field, nullptr);
        if (!store_.ClassDefined(format, field, Classes::kHiddenIf)) {
            return true;
        }
        auto expression = Compile(format, field, &Parse_HIDDEN_IF, false);
        const bool compiled = expression != nullptr;
        store_.SetDbHiddenIfExpression(format, field, expression.release());
        return compiled;
    }

private:
    // A blank expression is compiled as an empty one.
    std::unique_ptr<INativeExpression> Compile(std::int32_t format, std::int32_t field,
                                               wchar_t* (*read)(const wchar_t*), bool is_string) {
        const Platform::OwnedWide owned(read(store_.GetDbClassString(format, field)));
        const std::wstring text = owned ? owned.get() : L"";
        return Expressions::CompileExpression(store_, names_,
                                              {.format = format, .field = field, .text = text, .is_string = is_string},
                                              &KSDLL_ReportParseErrorToMessageBox);
    }

    IMemoryResidentData& store_;
    FieldNameTables names_;
};

} // namespace

void CompileExpressionsOf(IMemoryResidentData& store, std::int32_t format) {
    ExpressionPhase phase(store);
    for (std::int32_t field = 0; field < Expressions::ExistingFields(store, format); ++field) {
        phase.CompileEvaluate(format, field);
        phase.CompileHiddenIf(format, field);
    }
}

bool CompileExpressions(IMemoryResidentData& store) {
    ExpressionPhase phase(store);
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        const std::int32_t fields = Expressions::ExistingFields(store, format);
        for (std::int32_t field = 0; field < fields; ++field) {
            if (!phase.CompileEvaluate(format, field) || !phase.CompileHiddenIf(format, field)) {
                ErrorExit();
                return false;
            }
        }
    }
    return true;
}

bool ValidateExpressions(IMemoryResidentData& store) {
    const bool sound = KSDLL_ValidateExpressions(store);
    if (!sound) {
        ErrorExit();
    }
    return sound;
}

} // namespace Kestrona::Configuration
