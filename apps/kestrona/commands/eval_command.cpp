#include "commands/commands.h"
#include "commands/import_folders.h"
#include "commands/print_records.h"
#include "commands/session.h"
#include "exit_codes.h"

#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <optional>
#include <utility>

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
    std::string problem;
    auto expression = RecordExpression::Parse(
        store, format, options.expression,
        options.inside_of_text ? ExpressionText::InsideOfText : ExpressionText::Expression, problem);
    if (!expression) {
        fmt::print(stderr, "kestrona: error: {}\n", problem);
    }
    return expression;
}

} // namespace

int RunEval(const EvalOptions& options) {
    Session session;
    if (const int code = session.Load(options.definition, options.key); code != kExitGood) {
        return code;
    }
    auto& store = session.Store();
    const std::int32_t format = session.FindFormat(options.table);
    if (format < 0) {
        return kExitUsage;
    }
    auto expression = ParseOrTell(store, format, options);
    auto filter = RecordFilter::Parse(store, format, options.conditions);
    auto order = ParseOrder(store, format, options.order, options.group_families);
    if (!expression || !filter || !order) {
        return kExitUsage;
    }
    const int code = ImportFolders(store, options.folders);
    if (code == kExitUnreadableInput) {
        return code;
    }
    RecordPrint print{
        {OwnField(store, format, store.GetDbKey(format))}, {}, std::move(*filter), options.limit, options.form,
        StyleFor(options.form, options.raw, false)};
    print.order = std::move(*order);
    print.added.push_back({ColumnName(store, format), std::move(*expression)});
    return PrintRecords(store, format, std::move(print)) ? code : kExitUnreadableInput;
}

} // namespace Kestrona::Tool
