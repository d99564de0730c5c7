#pragma once

/// \file
/// What the tool's exit codes mean.

namespace Kestrona::Tool {

enum ExitCode : int {
    kExitGood = 0,
    kExitFindings = 1,        ///< Errors in a definition, rejected rows.
    kExitUsage = 2,           ///< The command line is wrong.
    kExitUnreadableInput = 3, ///< Input cannot be read, output cannot be written, or memory ran out.
    kExitDamagedInput = 4,
    kExitKey = 5, ///< The key of an encrypted file is wrong or missing.
};

} // namespace Kestrona::Tool
