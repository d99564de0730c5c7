#include "commands/opened_table.h"
#include "commands/record_commands.h"
#include "commands/tracked_source.h"
#include "data/track_target.h"
#include "exit_codes.h"
#include "output/message.h"

#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <cstdio>
#include <memory>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::MemoryResidentData;
using Tracking::TrackingPath;
using Tracking::Conditions::ITrackingCondition;

std::unique_ptr<ITrackingCondition> ParseTargetOrTell(MemoryResidentData& store, const std::string& text) {
    Problem problem;
    auto target = ParseTrackTarget(store, text, problem);
    if (!target) {
        TellError(problem);
    }
    return target;
}

TrackingPath FindPath(MemoryResidentData& store, std::int32_t format, ITrackingCondition& target, bool lists) {
    TrackingPath path;
    if (lists) {
        KSDLL_LocateDataTrack(store, path, format, true, &target);
    } else {
        setDataPath(store, path, format, &target);
    }
    return path;
}

int PrintValues(OpenedTable& table, const TrackOptions& options, ITrackingCondition& target) {
    const int code = table.ReadFolders();
    if (code == kExitUnreadableInput) {
        return code;
    }
    // Paths hold columns, and reading files may have made others.
    auto& store = table.Store();
    const TrackingPath path = FindPath(store, table.Format(), target, options.lists);
    WriteTable(PathSource(store, path, table.Format()), OutputForm::Table, stderr);
    const TrackedSource source(store, path, table.Format(), table.Records(), table.Style());
    return table.Write(source) ? code : kExitUnreadableInput;
}

int PrintTrack(OpenedTable& table, const TrackOptions& options, ITrackingCondition& target) {
    auto& store = table.Store();
    const TrackingPath path = FindPath(store, table.Format(), target, options.lists);
    if (path.field < 0) {
        TellError(Code::NoWay, Hint{options.lists ? "Add a reference that leads there to the definition." : ""},
                  "no way leads from {} to {}", ToUtf8(store.GetDbName(table.Format())), options.target);
        return kExitFindings;
    }
    if (table.HasRecords()) {
        return PrintValues(table, options, target);
    }
    return table.Write(PathSource(store, path, table.Format())) ? kExitGood : kExitUnreadableInput;
}

} // namespace

int RunTrack(const TrackOptions& options) {
    OpenedTable table;
    if (const int code = table.Open(options.records, NoRecords::Allowed); code != kExitGood) {
        return code;
    }
    const auto target = ParseTargetOrTell(table.Store(), options.target);
    return target ? PrintTrack(table, options, *target) : kExitUsage;
}

} // namespace Kestrona::Tool
