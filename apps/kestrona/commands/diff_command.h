#pragma once

#include "data/text_decoder.h"
#include "encryption.h"
#include "output/table_writer.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Kestrona::Tool {

/// One side of a comparison.
struct DiffInput {
    std::string file; ///< What holds the definition, and the records if no folder gives them.
    std::vector<std::string> folders;
};

struct DiffOptions {
    DiffInput old_input;
    DiffInput new_input;
    TextEncoding encoding = TextEncoding::Auto; ///< Of the CSV files.
    KeyOptions key;
    std::vector<std::string> tables; ///< Names of formats; empty for all.
    std::string dataset;             ///< The one of several datasets; empty for the first.
    OutputForm form = OutputForm::Table;
    bool summary = false;   ///< Print numbers only, a row for each table.
    double tolerance = 0.0; ///< Numbers, dates and durations that are no further apart count as equal.
    bool raw = false;       ///< Print stored values in every output form.
    bool text = false;      ///< Print display texts in every output form.
};

/// Compares two sets of records by their keys. Returns `kExitGood` where they are the same and `kExitFindings` where
/// they differ; a side that cannot be read whole gives another exit code.
int RunDiff(const DiffOptions& options);

/// Adds the command; `code` takes its exit code.
void AddDiffCommand(CLI::App& app, int& code);

} // namespace Kestrona::Tool
