#include "data/record_expression.h"

#include "encryption.h"

#include <kestrona/expression_parsing.h>
#include <kestrona/expression_tree.h>
#include <kestrona/host/expression_excerpt.h>
#include <kestrona/unicode.h>

#include <cstddef>
#include <utility>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

constexpr std::string_view kIndent = "    ";

bool YieldsText(const INativeExpression& expression) {
    const auto* root = dynamic_cast<const Expressions::Expression*>(&expression);
    return root != nullptr && dynamic_cast<const Expressions::StringListExpression*>(root->Inner().get()) != nullptr;
}

/// The number of neighbours that stand at `first` and behind it.
std::size_t RunLength(const std::vector<std::int32_t>& records, std::size_t first) {
    std::size_t end = first + 1;
    while (end < records.size() && records[end] == records[end - 1] + 1) {
        ++end;
    }
    return end - first;
}

} // namespace

RecordExpression::RecordExpression(IMemoryResidentData& store, std::unique_ptr<INativeExpression> expression)
    : store_(&store),
      expression_(std::move(expression)),
      is_text_(YieldsText(*expression_)) {}

std::optional<RecordExpression> RecordExpression::Parse(IMemoryResidentData& store, std::int32_t format,
                                                        std::string_view text, ExpressionText kind, Problem& problem) {
    // The inside of a text stands between these marks, which it cannot hold itself.
    const std::wstring mark = kind == ExpressionText::InsideOfText ? L"~" : L"";
    ExpressionErrorInfo info;
    info.Format = format;
    std::unique_ptr<INativeExpression> expression(
        KSDLL_ParseAndVerifyExpression(store, format, mark + FromUtf8(text) + mark, info));
    if (expression == nullptr) {
        problem = {Code::BadExpression, Host::ExplainFailure(info.Message, info.Expression, info.Position, kIndent)};
        return std::nullopt;
    }
    if (const auto reason = WhyUnreadable(store, *expression, YieldsText(*expression))) {
        problem = *reason;
        return std::nullopt;
    }
    return RecordExpression(store, std::move(expression));
}

std::vector<double> RecordExpression::Numbers(const std::vector<std::int32_t>& records) const {
    std::vector<double> numbers(records.size());
    for (std::size_t first = 0; first < records.size();) {
        const std::size_t length = RunLength(records, first);
        expression_->EvaluateBlock(*store_, records[first], static_cast<std::int32_t>(length), numbers.data() + first);
        first += length;
    }
    return numbers;
}

std::string RecordExpression::Text(std::int32_t record) const {
    std::wstring text;
    expression_->Evaluate(*store_, record, -1, &text);
    return ToUtf8(WithoutZeros(std::move(text)));
}

} // namespace Kestrona::Tool
