#pragma once

#include "expressions/parse_names.h"

#include <kestrona/expression_parsing.h>

#include <cstdint>
#include <memory>
#include <string>

namespace Kestrona::Expressions {

// What is to be compiled. `field` is -1 for an expression of no field.
struct ExpressionSource {
    std::int32_t format = -1;
    std::int32_t field = -1;
    const std::wstring& text;
    bool is_string = false;
};

// Null after a failure, which `info` then tells.
std::unique_ptr<INativeExpression> ParseExpression(IMemoryResidentData& store, FieldNameTables& tables,
                                                   const ExpressionSource& source, ExpressionErrorInfo& info);

// Null after a failure, of which `callback` is told if it is not null. Whoever compiles many expressions of a store
// passes the same tables.
std::unique_ptr<INativeExpression> CompileExpression(IMemoryResidentData& store, FieldNameTables& tables,
                                                     const ExpressionSource& source, ExpressionErrorCallback callback);

} // namespace Kestrona::Expressions
