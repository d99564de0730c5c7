#include "commands/session.h"

#include "commands/file_problems.h"
#include "commands/host_output.h"
#include "commands/saved_secrets.h"
#include "data/compiled_head.h"
#include "data/definition_reader.h"
#include "data/field_names.h"
#include "exit_codes.h"
#include "output/message.h"
#include "output/there_are.h"

#include <kestrona/safe_file.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <set>

namespace Kestrona::Tool {
namespace {

/// Borrows the name of the file that the command line gives.
Host::DefaultHostOptions HostOptions(const std::string& source) {
    Host::DefaultHostOptions options;
    options.progress = true;
    TellThroughTool(options);
    options.reader = [&source](const std::string& path) {
        return ReadDefinition(path, path == source);
    };
    return options;
}

int ExitCodeOf(Host::LoadOutcome outcome) {
    switch (outcome) {
    case Host::LoadOutcome::Ok:
        return kExitGood;
    case Host::LoadOutcome::Unreadable:
        return kExitUnreadableInput;
    case Host::LoadOutcome::Findings:
    case Host::LoadOutcome::AlreadyLoaded:
        break;
    }
    return kExitFindings;
}

/// Says on stderr that the file has no dataset of this name. Returns an exit code.
int FindDataset(const std::string& path, const std::string& dataset) {
    if (!IsSnapshot(Host::KindOfFile(path))) {
        TellError(Code::UnknownDataset, Hint{"Leave out --dataset."}, "'{}' is no snapshot and has no datasets", path);
        return kExitUsage;
    }
    Host::FileProblem problem;
    const auto info = Host::ReadSnapshotInfo(path, problem);
    if (!info) {
        return TellProblem(problem);
    }
    std::set<std::string> known;
    for (const Host::SnapshotTable& table : info->tables) {
        if (EqualIgnoringCase(table.dataset, FromUtf8(dataset))) {
            return kExitGood;
        }
        known.insert(ToUtf8(table.dataset));
    }
    known.erase("");
    TellError(Code::UnknownDataset, ThereAre({known.begin(), known.end()}), "'{}' has no dataset '{}'", path, dataset);
    return kExitUsage;
}

} // namespace

Session::Session() : host_(HostOptions(source_)) {}

int Session::Load(const std::string& path) {
    source_ = path;
    const Host::FileKind kind = path == kStdin ? Host::FileKind::Other : Host::KindOfFile(path);
    if (IsSnapshot(kind)) {
        return LoadSnapshot(path, {});
    }
    return LoadDefinition(path, kind);
}

int Session::Load(const std::string& path, const KeyOptions& key, const std::string& dataset) {
    if (const int code = SetUpKey(key); code != kExitGood) {
        return code;
    }
    if (dataset.empty()) {
        return Load(path);
    }
    source_ = path;
    const int code = FindDataset(path, dataset);
    return code == kExitGood ? LoadSnapshot(path, dataset) : code;
}

int Session::LoadDefinition(const std::string& path, Host::FileKind kind) {
    if (kind == Host::FileKind::CompiledDefinition) {
        return LoadCompiled(path);
    }
    if (const int code = RefuseUnreadable(path); code != kExitGood) {
        return code;
    }
    Host::FileProblem problem;
    if (kind == Host::FileKind::Other && path != kStdin && !CheckIsText(path, problem)) {
        return TellProblem(problem);
    }
    return ExitCodeOf(host_.LoadDefinition(path));
}

int Session::LoadCompiled(const std::string& path) {
    Host::FileProblem problem;
    if (!CheckCompiledHead(path, problem)) {
        return TellProblem(problem);
    }
    // Not the entry that a process has once: that one does not tell where a file goes wrong.
    if (host_.FillFromFile(path, Store()) == Host::LoadOutcome::Ok) {
        return kExitGood;
    }
    problem = host_.LastFileProblem();
    // Of these the host only warns. The head was good a moment ago: somebody else has written or removed the file.
    const bool is_changed =
        problem.fault == Host::FileFault::WrongVersion || problem.fault == Host::FileFault::CannotOpen;
    return is_changed ? TellProblem(problem) : ExitCodeOf(problem.fault);
}

int Session::Compile(const std::string& definition, const std::string& target) {
    source_ = definition;
    if (const int code = RefuseUnreadable(definition); code != kExitGood) {
        return code;
    }
    // Before the load, which takes its time.
    if (const SafeFile probe(FromUtf8(target)); !probe.IsOpen()) {
        return TellProblem({Host::FileFault::CannotWrite, target, {}, ToUtf8(probe.Error()), ""});
    }
    const Host::LoadOutcome outcome = host_.CompileDefinition(definition, target);
    const Host::FileProblem problem = host_.LastFileProblem();
    if (problem.fault == Host::FileFault::None) {
        return ExitCodeOf(outcome);
    }
    // The host only warns of a target that it cannot open any more.
    return host_.Messages()->ErrorCount() == 0 ? TellProblem(problem) : ExitCodeOf(problem.fault);
}

int Session::LoadSnapshot(const std::string& path, const std::string& dataset) {
    Host::FileProblem problem;
    if (!Host::LoadSnapshot(path, Store(), FromUtf8(dataset), problem)) {
        return TellProblem(problem);
    }
    has_records_ = true;
    return OpenSavedSecrets(Store());
}

Data::MemoryResident::MemoryResidentData& Session::Store() {
    return host_.Store();
}

int Session::RefuseFolders(const std::vector<std::string>& folders) const {
    if (!has_records_ || folders.empty()) {
        return kExitGood;
    }
    TellError(Code::RecordsTwice, "'{}' is a snapshot and has its own records", source_);
    return kExitUsage;
}

std::int32_t Session::FindFormat(const std::string& name) {
    auto& store = Store();
    const std::int32_t named = FormatNamed(store, name);
    if (named < 0) {
        std::vector<std::string> known;
        known.reserve(static_cast<std::size_t>(store.GetFormatCount()));
        for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
            known.push_back(FormatName(store, format));
        }
        TellError(Code::UnknownFormat, ThereAre(known), "no format is called '{}'", name);
    }
    return named;
}

std::int32_t Session::FindField(std::int32_t format, const std::string& name) {
    auto& store = Store();
    const std::int32_t named = FieldNamed(store, format, name);
    if (named < 0) {
        std::vector<std::string> known;
        known.reserve(static_cast<std::size_t>(store.GetDbFields(format)));
        for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
            known.push_back(ToUtf8(store.GetColumnName(format, field)));
        }
        TellError(Code::UnknownField, ThereAre(known), "no field of the format is called '{}'", name);
    }
    return named;
}

} // namespace Kestrona::Tool
