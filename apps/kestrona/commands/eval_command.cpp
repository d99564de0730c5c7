#include "commands/opened_table.h"
#include "commands/record_commands.h"
#include "exit_codes.h"
#include "output/message.h"

#include <kestrona/unicode.h>

#include <optional>
#include <utility>
#include <vector>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

constexpr const char* kColumn = "Value";
/// Beside a key of the same name.
constexpr const char* kOtherColumn = "Result";

std::string ColumnName(IMemoryResidentData& store, std::int32_t format) {
    return ToUtf8(store.GetColumnName(format, store.GetDbKey(format))) == kColumn ? kOtherColumn : kColumn;
}

std::optional<RecordExpression> ParseOrTell(IMemoryResidentData& store, std::int32_t format,
                                            const EvalOptions& options) {
    Problem problem;
    auto expression = RecordExpression::Parse(
        store, format, options.expression,
        options.inside_of_text ? ExpressionText::InsideOfText : ExpressionText::Expression, problem);
    if (!expression) {
        TellError(problem);
    }
    return expression;
}

} // namespace

int RunEval(const EvalOptions& options) {
    OpenedTable table;
    if (const int code = table.Open(options.records); code != kExitGood) {
        return code;
    }
    auto& store = table.Store();
    auto expression = ParseOrTell(store, table.Format(), options);
    if (!expression) {
        return kExitUsage;
    }
    const int code = table.ReadFolders();
    if (code == kExitUnreadableInput) {
        return code;
    }
    std::vector<NamedExpression> added;
    added.push_back({ColumnName(store, table.Format()), std::move(*expression)});
    const FollowedField key = OwnField(store, table.Format(), store.GetDbKey(table.Format()));
    return table.Print({key}, std::move(added)) ? code : kExitUnreadableInput;
}

} // namespace Kestrona::Tool
