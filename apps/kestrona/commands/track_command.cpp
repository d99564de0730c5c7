#include "commands/commands.h"
#include "commands/import_folders.h"
#include "commands/print_records.h"
#include "commands/session.h"
#include "commands/tracked_source.h"
#include "data/track_target.h"
#include "exit_codes.h"

#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <cstdio>
#include <memory>
#include <utility>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::MemoryResidentData;
using Tracking::TrackingPath;
using Tracking::Conditions::ITrackingCondition;

/// What to track, all of it checked.
struct Track {
    std::int32_t format;
    std::unique_ptr<ITrackingCondition> target;
    RecordFilter filter;
    RecordOrder order;
};

std::unique_ptr<ITrackingCondition> ParseTargetOrTell(MemoryResidentData& store, const std::string& text) {
    std::string problem;
    auto target = ParseTrackTarget(store, text, problem);
    if (!target) {
        fmt::print(stderr, "kestrona: error: {}\n", problem);
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

int PrintValues(MemoryResidentData& store, const TrackOptions& options, const Track& track) {
    const int code = ImportFolders(store, options.folders);
    if (code == kExitUnreadableInput) {
        return code;
    }
    // Paths hold columns, and reading files may have made others.
    const TrackingPath path = FindPath(store, track.format, *track.target, options.lists);
    WriteTable(PathSource(store, path, track.format), OutputForm::Table, stderr);
    const TrackedSource source(store, path, track.format, ChooseRecords(track.filter, track.order, options.limit),
                               StyleFor(options.form, options.raw, options.text));
    if (!WriteTable(source, options.form, stdout)) {
        fmt::print(stderr, "kestrona: error: the output cannot be written\n");
        return kExitUnreadableInput;
    }
    return code;
}

int PrintTrack(MemoryResidentData& store, const TrackOptions& options, const Track& track) {
    const TrackingPath path = FindPath(store, track.format, *track.target, options.lists);
    if (path.field < 0) {
        fmt::print(stderr, "kestrona: no way leads from {} to {}{}\n", ToUtf8(store.GetDbName(track.format)),
                   options.target, options.lists ? "" : "; --lists would go through lists, too");
        return kExitFindings;
    }
    if (!options.folders.empty()) {
        return PrintValues(store, options, track);
    }
    return WriteTable(PathSource(store, path, track.format), options.form, stdout) ? kExitGood : kExitUnreadableInput;
}

} // namespace

int RunTrack(const TrackOptions& options) {
    Session session;
    if (const int code = session.Load(options.definition, options.key); code != kExitGood) {
        return code;
    }
    auto& store = session.Store();
    const std::int32_t format = session.FindFormat(options.table);
    if (format < 0) {
        return kExitUsage;
    }
    auto target = ParseTargetOrTell(store, options.target);
    auto filter = RecordFilter::Parse(store, format, options.conditions);
    auto order = ParseOrder(store, format, options.order, options.group_families);
    if (!target || !filter || !order) {
        return kExitUsage;
    }
    return PrintTrack(store, options, {format, std::move(target), std::move(*filter), std::move(*order)});
}

} // namespace Kestrona::Tool
