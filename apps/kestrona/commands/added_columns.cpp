#include "commands/added_columns.h"

#include "data/cell_text.h"
#include "output/message.h"

#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <set>
#include <utility>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

std::set<std::string> FieldNames(IMemoryResidentData& store, std::int32_t format) {
    std::set<std::string> names;
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        names.insert(ToUtf8(store.GetColumnName(format, field)));
    }
    return names;
}

std::optional<NamedExpression> ParseAdded(IMemoryResidentData& store, std::int32_t format, const std::string& text,
                                          std::set<std::string>& names, Problem& problem) {
    const std::size_t sign = text.find('=');
    if (sign == std::string::npos || sign == 0) {
        problem = {Code::BadNamedValue, "is not of the form NAME=EXPRESSION"};
        return std::nullopt;
    }
    std::string name = text.substr(0, sign);
    if (!names.insert(name).second) {
        problem = {Code::BadNamedValue, fmt::format("gives the name '{}' a second time", name)};
        return std::nullopt;
    }
    auto expression =
        RecordExpression::Parse(store, format, text.substr(sign + 1), ExpressionText::Expression, problem);
    if (!expression) {
        problem.what = "holds no expression: " + problem.what;
        return std::nullopt;
    }
    return NamedExpression{std::move(name), std::move(*expression)};
}

} // namespace

std::optional<std::vector<NamedExpression>> ParseAddedColumns(IMemoryResidentData& store, std::int32_t format,
                                                              const std::vector<std::string>& texts) {
    std::set<std::string> names = FieldNames(store, format);
    std::vector<NamedExpression> columns;
    for (const std::string& text : texts) {
        Problem problem;
        std::optional<NamedExpression> column = ParseAdded(store, format, text, names, problem);
        if (!column) {
            problem.what = fmt::format("--add '{}' {}", text, problem.what);
            TellError(problem);
            return std::nullopt;
        }
        columns.push_back(std::move(*column));
    }
    return columns;
}

AddedColumns::AddedColumns(IMemoryResidentData& store, const std::vector<FollowedField>& fields,
                           std::vector<NamedExpression> added, const std::vector<std::int32_t>& records,
                           CellStyle style)
    : fields_(store, fields, records, style),
      added_(std::move(added)),
      records_(records),
      columns_(fields_.Columns()) {
    for (const auto& [name, expression] : added_) {
        columns_.push_back({name, expression.IsText() ? CellKind::Text : CellKind::Number});
        numbers_.push_back(expression.IsText() ? std::vector<double>() : expression.Numbers(records_));
    }
}

std::string AddedColumns::Cell(std::size_t row, std::size_t column) const {
    const std::size_t fields = fields_.Columns().size();
    if (column < fields) {
        return fields_.Cell(row, column);
    }
    const RecordExpression& expression = added_[column - fields].expression;
    return expression.IsText() ? expression.Text(records_[row])
                               : ValueText(numbers_[column - fields][row], ValueForm::Number);
}

} // namespace Kestrona::Tool
