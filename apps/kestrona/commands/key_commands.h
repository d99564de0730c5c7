#pragma once

#include "encryption.h"
#include "output/table_writer.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

/// \file
/// Commands around keys and what they protect. Each returns an exit code; data go to stdout, everything else to stderr.

namespace Kestrona::Tool {

struct CryptOptions {
    KeyOptions key;
    std::vector<std::string> texts; ///< Empty for the lines of stdin.
};

/// Prints the encrypted form of each text, one a line.
int RunEncrypt(const CryptOptions& options);
/// Prints the plain form of each text, one a line, and an empty line for one that has none.
int RunDecrypt(const CryptOptions& options);

struct ProtectKeyOptions {
    std::string file;   ///< Empty for stdout.
    bool force = false; ///< Replace the file if it is there.
};

/// Asks for a pass phrase, or reads a line if stdin is no terminal, and writes the form that only this user can read.
int RunProtectKey(const ProtectKeyOptions& options);

struct AuditShowOptions {
    std::string file;
    OutputForm form = OutputForm::Table;
};

/// Prints the entries of an audit file, a row for each changed field.
int RunAuditShow(const AuditShowOptions& options);

/// Adds all of these commands; `code` takes the exit code of the one that runs.
void AddKeyCommands(CLI::App& app, int& code);

} // namespace Kestrona::Tool
