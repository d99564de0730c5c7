#include "commands/opened_table.h"
#include "commands/record_commands.h"
#include "data/matrix_text.h"
#include "exit_codes.h"
#include "output/message.h"

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
        if (HasValues(store, format, field)) {
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
        Problem problem;
        auto field = ParseFollowedField(store, format, name, problem);
        if (!field) {
            TellError(problem);
            return std::nullopt;
        }
        fields.push_back(std::move(*field));
    }
    return fields;
}

} // namespace

int RunShow(const ShowOptions& options) {
    OpenedTable table;
    if (const int code = table.Open(options.records); code != kExitGood) {
        return code;
    }
    std::string left_out;
    auto fields = ChooseFields(table.Store(), table.Format(), options.columns, left_out);
    auto added = ParseAddedColumns(table.Store(), table.Format(), options.added);
    if (!fields || !added) {
        return kExitUsage;
    }
    const int code = table.ReadFolders();
    if (code == kExitUnreadableInput) {
        return code;
    }
    if (!table.Print(*fields, std::move(*added))) {
        return kExitUnreadableInput;
    }
    if (!left_out.empty()) {
        fmt::print(stderr, "fields without values are left out: {}\n", left_out);
    }
    return code;
}

} // namespace Kestrona::Tool
