#include "commands/record_filter.h"

#include "output/message.h"

#include <utility>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

/// Keeps the records for which the expression is not 0, which a NaN is not.
std::vector<std::int32_t> Kept(const std::vector<std::int32_t>& records, const RecordExpression& expression) {
    const std::vector<double> numbers = expression.Numbers(records);
    std::vector<std::int32_t> kept;
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (numbers[i] != 0.0) {
            kept.push_back(records[i]);
        }
    }
    return kept;
}

} // namespace

std::optional<RecordFilter> RecordFilter::Parse(IMemoryResidentData& store, std::int32_t format,
                                                const std::vector<std::string>& texts) {
    RecordFilter filter(store, format);
    for (const std::string& text : texts) {
        Problem problem;
        if (!filter.Add(text, problem)) {
            problem.what = fmt::format("--where '{}' {}", text, problem.what);
            TellError(problem);
            return std::nullopt;
        }
    }
    return filter;
}

bool RecordFilter::Add(const std::string& text, Problem& problem) {
    if (!ComparesField(*store_, format_, text)) {
        return AddExpression(text, problem);
    }
    std::optional<RecordCondition> condition = ParseCondition(*store_, format_, text, problem);
    if (condition) {
        conditions_.push_back(std::move(*condition));
    }
    return condition.has_value();
}

bool RecordFilter::AddExpression(const std::string& text, Problem& problem) {
    std::optional<RecordExpression> expression =
        RecordExpression::Parse(*store_, format_, text, ExpressionText::Expression, problem);
    if (!expression) {
        const std::string what =
            "does not begin with the name of a field and one of = < <= > >=, and is no expression: " + problem.what;
        problem = problem.code == Code::BadExpression
                      ? Problem{Code::BadCondition, what,
                                "Begin with the name of a field, or mend the expression at the caret."}
                      : Problem{problem.code, what, problem.hint};
        return false;
    }
    if (expression->IsText()) {
        problem = {Code::BadCondition, "is a text, which is never true", "Compare it with another text."};
        return false;
    }
    expressions_.push_back(std::move(*expression));
    return true;
}

std::vector<std::int32_t> RecordFilter::Find() const {
    std::vector<std::int32_t> records = FindRecords(*store_, format_, conditions_);
    for (const RecordExpression& expression : expressions_) {
        records = Kept(records, expression);
    }
    return records;
}

} // namespace Kestrona::Tool
