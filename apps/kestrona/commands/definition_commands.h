#pragma once

#include "lint/report_writer.h"
#include "output/table_writer.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

/// \file
/// Commands that look at definitions. Each returns an exit code; data go to stdout, everything else to
/// stderr.

namespace Kestrona::Tool {

struct CheckOptions {
    std::string definition;
    Lint::ReportForm form = Lint::ReportForm::Text;
    bool strict = false; ///< Warnings count as findings too.
};

/// Tells what is wrong or doubtful about a definition.
int RunCheck(const CheckOptions& options);

struct SchemaOptions {
    std::string definition;
    std::string table; ///< Empty for the list of all formats.
    std::string field; ///< Empty for all fields of the format.
    OutputForm form = OutputForm::Table;
};

/// Lists the formats of a definition, the fields of one format, or what there is to say of one field.
int RunSchema(const SchemaOptions& options);

struct GraphOptions {
    std::string definition;
    std::string file; ///< Empty for stdout.
    bool svg = false;
    bool dot = false; ///< With neither, the ending of the file tells, and SVG stands for all others.
};

/// Draws the references between the formats of a definition.
int RunGraph(const GraphOptions& options);

struct DocsOptions {
    std::string definition;
    std::string file; ///< Empty for stdout.
};

/// Writes a data dictionary.
int RunDocs(const DocsOptions& options);

struct TranslateExtractOptions {
    std::string definition;
    std::string folder = "."; ///< Where the lists go.
};

/// Writes the lists of the definition's texts for a translator to fill in.
int RunTranslateExtract(const TranslateExtractOptions& options);

struct TranslateApplyOptions {
    std::string definition;
    std::vector<std::string> lists;
    OutputForm form = OutputForm::Table;
};

/// Tells what filled lists make of the definition's texts.
int RunTranslateApply(const TranslateApplyOptions& options);

/// Adds the commands that look at definitions; `code` takes the exit code of the one that is run.
void AddDefinitionCommands(CLI::App& app, int& code);

} // namespace Kestrona::Tool
