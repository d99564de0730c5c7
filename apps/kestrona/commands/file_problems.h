#pragma once

#include "exit_codes.h"

#include <kestrona/host/snapshot.h>

#include <string>

/// \file
/// What the commands say of files that are not as they should be.

namespace Kestrona::Tool {

/// Returns the exit code that goes with a fault; `kExitFindings` for none, where the definition in a sound file has
/// been found wrong.
int ExitCodeOf(Host::FileFault fault);

/// Says on stderr what is wrong with a file, if there is something to say. Returns its `ExitCodeOf`.
int TellProblem(const Host::FileProblem& problem);

/// Tells whether a regular file begins like a text and so can be the source of a definition; `problem` otherwise. The
/// parser would find each of its bytes wrong.
[[nodiscard]] bool CheckIsText(const std::string& path, Host::FileProblem& problem);

/// Tells whether a file holds records beside a definition.
[[nodiscard]] bool IsSnapshot(Host::FileKind kind);

/// Says on stderr why the source of a definition cannot be opened, if it is so. Returns `kExitUnreadableInput` then,
/// else `kExitGood`.
int RefuseUnreadable(const std::string& path);

/// Says on stderr that both names are those of one file, which a command would read and write at once. Returns
/// `kExitUsage` then, else `kExitGood`.
int RefuseSameFile(const std::string& source, const std::string& target);

/// Says on stderr that a command needs the source of a definition if the file holds another form of one. Returns
/// `kExitUnreadableInput` then, else `kExitGood`.
int RefuseCompiled(const std::string& path, const char* command);

} // namespace Kestrona::Tool
