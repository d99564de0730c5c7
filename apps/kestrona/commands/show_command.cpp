#include "commands/commands.h"
#include "commands/import_folders.h"
#include "commands/print_records.h"
#include "commands/record_source.h"
#include "commands/session.h"
#include "exit_codes.h"

#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <optional>
#include <utility>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

/// Joins the names of the fields without values in `left_out`.
std::vector<FollowedField> AllFields(IMemoryResidentData& store, std::int32_t format, std::string& left_out) {
    std::vector<FollowedField> fields;
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        FollowedField own = OwnField(store, format, field);
        if (IsShown(store, format, field)) {
            fields.push_back(std::move(own));
        } else {
            left_out += (left_out.empty() ? "" : ", ") + own.name;
        }
    }
    return fields;
}

/// The fields to show; an empty list of names stands for all that have something to print.
std::optional<std::vector<FollowedField>> ChooseFields(IMemoryResidentData& store, std::int32_t format,
                                                       const std::vector<std::string>& names, std::string& left_out) {
    if (names.empty()) {
        return AllFields(store, format, left_out);
    }
    std::vector<FollowedField> fields;
    for (const std::string& name : names) {
        std::string problem;
        auto field = ParseFollowedField(store, format, name, problem);
        if (!field) {
            fmt::print(stderr, "kestrona: error: {}\n", problem);
            return std::nullopt;
        }
        fields.push_back(std::move(*field));
    }
    return fields;
}

} // namespace

int RunShow(const ShowOptions& options) {
    Session session;
    if (const int code = session.Load(options.definition, options.key); code != kExitGood) {
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
    auto order = ParseOrder(store, format, options.order, options.group_families);
    if (!fields || !added || !filter || !order) {
        return kExitUsage;
    }
    const int code = ImportFolders(store, options.folders);
    if (code == kExitUnreadableInput) {
        return code;
    }
    if (!PrintRecords(store, format,
                      {std::move(*fields), std::move(*added), std::move(*filter), options.limit, options.form,
                       StyleFor(options.form, options.raw, options.text), std::move(*order)})) {
        return kExitUnreadableInput;
    }
    if (!left_out.empty()) {
        fmt::print(stderr, "fields without values are left out: {}\n", left_out);
    }
    return code;
}

} // namespace Kestrona::Tool
