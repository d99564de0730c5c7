#pragma once

#include "fixtures/store_test.h"

#include <kestrona/expression_parsing.h>

namespace Kestrona::Fixtures {

// Expressions over a store, by their texts.
class ExpressionTest : public RecordedStoreTest {
protected:
    using Compiled = std::unique_ptr<INativeExpression>;

    Compiled Compile(std::int32_t format, std::int32_t field, const std::wstring& text, bool is_string = false) {
        Compiled expression(KSDLL_CreateFieldExpression(*store, format, field, text, is_string, nullptr));
        EXPECT_NE(expression, nullptr) << testing::PrintToString(text);
        return expression;
    }

    void Calculate(std::int32_t format, std::int32_t field, const std::wstring& text) {
        const bool is_string = store->ClassDefined(format, field, Classes::kFreeFormat);
        store->SetDbEvaluateExpression(format, field, Compile(format, field, text, is_string).release());
    }

    double ValueOf(std::int32_t format, const std::wstring& text, std::int32_t record) {
        return KSDLL_EvaluateExpression(*store, record, Compile(format, -1, text).get(), nullptr);
    }

    std::wstring TextOf(std::int32_t format, const std::wstring& text, std::int32_t record,
                        std::int32_t matrix_index = -1, std::int32_t field = -1) {
        std::wstring result = L"before";
        const Compiled expression = Compile(format, field, text, true);
        EXPECT_EQ(KSDLL_MatrixEvaluateExpression(*store, record, matrix_index, expression.get(), &result), 0.0);
        return result;
    }
};

} // namespace Kestrona::Fixtures
