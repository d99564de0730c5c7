#include "commands/commands.h"
#include "commands/import_folders.h"
#include "commands/print_records.h"
#include "commands/record_source.h"
#include "commands/session.h"
#include "exit_codes.h"

#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <map>
#include <optional>
#include <utility>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

std::string JoinedNames(const std::map<std::string, std::int32_t>& fields) {
    std::string names;
    for (const auto& [name, field] : fields) {
        names += (names.empty() ? "" : ", ") + name;
    }
    return names;
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
                       JoinedNames(known));
            return std::nullopt;
        }
        fields.push_back(found->second);
    }
    left_out.clear();
    return fields;
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
    auto fields = ChooseFields(store, format, options.columns, left_out);
    auto added = ParseAddedColumns(store, format, options.added);
    auto filter = RecordFilter::Parse(store, format, options.conditions);
    if (!fields || !added || !filter) {
        return kExitUsage;
    }
    const int code = ImportFolders(store, options.folders);
    if (code == kExitUnreadableInput) {
        return code;
    }
    if (!PrintRecords(store, format,
                      {std::move(*fields), std::move(*added), std::move(*filter), options.limit, options.form})) {
        return kExitUnreadableInput;
    }
    if (!left_out.empty()) {
        fmt::print(stderr, "fields without values are left out: {}\n", left_out);
    }
    return code;
}

} // namespace Kestrona::Tool
