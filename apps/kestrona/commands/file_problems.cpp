#include "commands/file_problems.h"

#include "data/definition_reader.h"
#include "output/message.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace Kestrona::Tool {
namespace {

using Host::FileFault;
using Host::FileKind;

/// Bytes that are looked at. Definitions hold no zeros, other files soon do.
constexpr std::size_t kStart = 4096;

Code CodeOf(FileFault fault) {
    switch (fault) {
    case FileFault::None:
        break;
    case FileFault::CannotOpen:
        return Code::CannotOpen;
    case FileFault::CannotRead:
        return Code::CannotRead;
    case FileFault::CannotWrite:
        return Code::CannotWrite;
    case FileFault::WrongMarker:
        return Code::WrongKind;
    case FileFault::WrongVersion:
        return Code::WrongVersion;
    case FileFault::Truncated:
        return Code::Truncated;
    case FileFault::Damaged:
        return Code::Damaged;
    case FileFault::TooLarge:
        return Code::TooLarge;
    }
    return Code::Unexpected;
}

} // namespace

int ExitCodeOf(FileFault fault) {
    switch (fault) {
    case FileFault::None:
        return kExitFindings;
    case FileFault::Truncated:
    case FileFault::Damaged:
        return kExitDamagedInput;
    case FileFault::CannotOpen:
    case FileFault::CannotRead:
    case FileFault::CannotWrite:
    case FileFault::WrongMarker:
    case FileFault::WrongVersion:
    case FileFault::TooLarge:
        break;
    }
    return kExitUnreadableInput;
}

int TellProblem(const Host::FileProblem& problem) {
    if (problem.fault != FileFault::None) {
        TellError(CodeOf(problem.fault), "{}", problem.ToString());
    }
    return ExitCodeOf(problem.fault);
}

bool CheckIsText(const std::string& path, Host::FileProblem& problem) {
    std::string start(kStart, '\0');
    std::ifstream file(path, std::ios::binary);
    start.resize(static_cast<std::size_t>(file.read(start.data(), static_cast<std::streamsize>(kStart)).gcount()));
    const std::size_t zero = start.find('\0');
    if (zero == std::string::npos) {
        return true;
    }
    problem = {FileFault::WrongMarker, path, static_cast<std::int64_t>(zero), "a zero byte",
               "a definition, compiled or not, or a snapshot"};
    return false;
}

bool IsSnapshot(FileKind kind) {
    return kind == FileKind::Snapshot || kind == FileKind::CompressedSnapshot;
}

int RefuseUnreadable(const std::string& path) {
    std::error_code unknown;
    if (path == kStdin || std::filesystem::is_regular_file(path, unknown)) {
        const bool is_open = path == kStdin || std::ifstream(path).is_open();
        return is_open ? int{kExitGood} : TellProblem({FileFault::CannotOpen, path, {}, std::strerror(errno), ""});
    }
    const char* const reason = unknown ? "" : "it is no file";
    return TellProblem({FileFault::CannotOpen, path, {}, unknown ? unknown.message() : reason, ""});
}

int RefuseSameFile(const std::string& source, const std::string& target) {
    std::error_code unknown;
    if (source != target && !std::filesystem::equivalent(source, target, unknown)) {
        return kExitGood;
    }
    TellError(Code::SameFile, "'{}' is read and cannot be written to, too", source);
    return kExitUsage;
}

int RefuseCompiled(const std::string& path, const char* command) {
    const FileKind kind = path == kStdin ? FileKind::Other : Host::KindOfFile(path);
    const bool compiled = kind == FileKind::CompiledDefinition;
    if (!compiled && !IsSnapshot(kind)) {
        return kExitGood;
    }
    TellError(Code::NeedsDefinition, "'{}' is a {}; {} needs the source of a definition", path,
              compiled ? "compiled definition" : "snapshot", command);
    return kExitUnreadableInput;
}

} // namespace Kestrona::Tool
