#pragma once

#include "data/text_decoder.h"
#include "encryption.h"
#include "output/table_writer.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

/// \file
/// Commands that make whole files, and that look at them. Each returns an exit code; data go to stdout, everything else
/// to stderr. A file that is made is there whole or not at all.

namespace Kestrona::Tool {

struct CompileOptions {
    std::string definition;
    std::string target;
};

/// Writes the compiled form of a definition.
int RunCompile(const CompileOptions& options);

struct ImportOptions {
    std::string definition;
    KeyOptions key;
    std::vector<std::string> folders;
    TextEncoding encoding = TextEncoding::Auto; ///< Of the CSV files.
    std::vector<std::string> datasets;          ///< `NAME=FOLDER`: further records of the formats with a file there.
    std::string target;
    bool compress = false;
    bool keep_going = false; ///< Write what was taken over, even if something was rejected.
};

/// Loads a definition and folders of CSV files, and writes them as a snapshot.
int RunImport(const ImportOptions& options);

struct InfoOptions {
    std::string file;
    OutputForm form = OutputForm::Table;
    bool tables = false; ///< Print the list of the tables only.
};

/// Tells what a snapshot or a compiled definition holds, without loading it.
int RunInfo(const InfoOptions& options);

struct CompressOptions {
    std::string source;
    std::string target;
};

int RunCompress(const CompressOptions& options);
int RunDecompress(const CompressOptions& options);

/// Adds all of these commands; `code` takes the exit code of the one that runs.
void AddFileCommands(CLI::App& app, int& code);

} // namespace Kestrona::Tool
