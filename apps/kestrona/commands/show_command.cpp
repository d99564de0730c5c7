#include "commands/commands.h"
#include "commands/import_folders.h"
#include "commands/record_source.h"
#include "commands/session.h"
#include "data/record_condition.h"
#include "exit_codes.h"

#include <kestrona/unicode.h>

#include <fmt/ranges.h>

#include <map>
#include <numeric>
#include <optional>
#include <ranges>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

std::vector<std::int32_t> AllRecords(IMemoryResidentData& store, std::int32_t format) {
    std::vector<std::int32_t> records(static_cast<std::size_t>(store.GetCurrentDbSize(format)));
    std::iota(records.begin(), records.end(), 0);
    return records;
}

/// The fields to show; an empty list of names stands for all that have something to print.
std::optional<std::vector<std::int32_t>> ChooseFields(IMemoryResidentData& store, std::int32_t format,
                                                      const std::vector<std::string>& names, std::string& left_out) {
    std::vector<std::int32_t> fields;
    std::map<std::string, std::int32_t> known;
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        std::string name = ToUtf8(store.GetColumnName(format, field));
        if (IsShown(store, format, field)) {
            fields.push_back(field);
            known.emplace(std::move(name), field);
        } else {
            left_out += (left_out.empty() ? "" : ", ") + name;
        }
    }
    if (names.empty()) {
        return fields;
    }
    fields.clear();
    for (const std::string& name : names) {
        const auto found = known.find(name);
        if (found == known.end()) {
            fmt::print(stderr, "kestrona: error: '{}' is no field with values to show; there are {}\n", name,
                       fmt::join(std::views::keys(known), ", "));
            return std::nullopt;
        }
        fields.push_back(found->second);
    }
    left_out.clear();
    return fields;
}

std::optional<std::vector<RecordCondition>> ParseConditions(IMemoryResidentData& store, std::int32_t format,
                                                            const std::vector<std::string>& texts) {
    std::vector<RecordCondition> conditions;
    for (const std::string& text : texts) {
        std::string problem;
        std::optional<RecordCondition> condition = ParseCondition(store, format, text, problem);
        if (!condition) {
            fmt::print(stderr, "kestrona: error: --where '{}' {}\n", text, problem);
            return std::nullopt;
        }
        conditions.push_back(std::move(*condition));
    }
    return conditions;
}

} // namespace

int RunShow(const ShowOptions& options) {
    Session session;
    if (const int code = session.Load(options.definition); code != kExitGood) {
        return code;
    }
    auto& store = session.Store();
    const std::int32_t format = session.FindFormat(options.table);
    if (format < 0) {
        return kExitUsage;
    }
    std::string left_out;
    const auto fields = ChooseFields(store, format, options.columns, left_out);
    const auto conditions = ParseConditions(store, format, options.conditions);
    if (!fields || !conditions) {
        return kExitUsage;
    }
    const int code = ImportFolders(store, options.folders);
    if (code == kExitUnreadableInput) {
        return code;
    }
    std::vector<std::int32_t> records =
        conditions->empty() ? AllRecords(store, format) : FindRecords(store, format, *conditions);
    const std::size_t found = records.size();
    if (options.limit > 0 && options.limit < found) {
        records.resize(options.limit);
    }
    const RecordSource source(store, format, *fields, std::move(records));
    if (!WriteTable(source, options.form, stdout)) {
        fmt::print(stderr, "kestrona: error: the output cannot be written\n");
        return kExitUnreadableInput;
    }
    if (!left_out.empty()) {
        fmt::print(stderr, "fields without values are left out: {}\n", left_out);
    }
    const std::string matching = conditions->empty() ? "" : fmt::format(" ({} match)", found);
    fmt::print(stderr, "{} of {} records of {}{}; peak memory {:.1f} MB\n", source.RowCount(),
               store.GetCurrentDbSize(format), options.table, matching, static_cast<double>(PeakMemory()) / 1.0e6);
    return code;
}

} // namespace Kestrona::Tool
