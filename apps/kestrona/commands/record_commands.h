#pragma once

#include "data/text_decoder.h"
#include "encryption.h"
#include "output/table_writer.h"

#include <cstddef>
#include <string>
#include <vector>

namespace CLI {
class App;
}

/// \file
/// Commands that print records. Each returns an exit code; data go to stdout, everything else to
/// stderr.

namespace Kestrona::Tool {

/// The records that a command works on, and the form in which it prints them.
struct RecordChoice {
    std::string source;  ///< A definition, compiled or not, or a snapshot.
    std::string dataset; ///< Of a snapshot's tables with several; empty for the first one of each.
    KeyOptions key;
    std::vector<std::string> folders;           ///< The records of a definition.
    TextEncoding encoding = TextEncoding::Auto; ///< Of the CSV files.
    std::string table;
    std::vector<std::string> conditions; ///< `FIELD=VALUE` and the like, or expressions; all must hold.
    std::vector<std::string> order;      ///< `FIELD[:desc]`: fields to sort by.
    bool group_families = false;         ///< Members of a family stand behind their parent.
    std::size_t limit = 0;               ///< Most rows to print; 0 for all.
    OutputForm form = OutputForm::Table;
    bool raw = false;  ///< Print stored values in every output form.
    bool text = false; ///< Print display texts in every output form.
};

struct ShowOptions {
    RecordChoice records;
    std::vector<std::string> columns; ///< Fields to print, in this order; empty for all.
    std::vector<std::string> added;   ///< `NAME=EXPRESSION`: columns behind the fields.
};

/// Prints one format's records.
int RunShow(const ShowOptions& options);

struct EvalOptions {
    RecordChoice records;
    std::string expression;
    bool inside_of_text = false; ///< The expression is the inside of a text.
};

/// Prints an expression's value for each record of a format.
int RunEval(const EvalOptions& options);

struct TrackOptions {
    RecordChoice records; ///< Without any only the path is told.
    std::string target;   ///< `FORMAT.FIELD`, or `class:` and the name of a class.
    bool lists = false;   ///< Go through lists, too.
};

/// Finds the path of references from a format to a field, tells it step by step, and prints the value at its end for
/// each record.
int RunTrack(const TrackOptions& options);

/// Adds the commands that print records; `code` takes the exit code of the one that is run.
void AddRecordCommands(CLI::App& app, int& code);

} // namespace Kestrona::Tool
