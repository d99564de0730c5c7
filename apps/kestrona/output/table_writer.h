#pragma once

#include "output/table_source.h"

#include <cstdio>
#include <map>
#include <string>

/// \file
/// Writes a table in one of the output forms.

namespace Kestrona::Tool {

enum class OutputForm {
    Table,
    Csv,
    Json,
    JsonLines,
    Markdown
};

/// The names of the forms on the command line.
[[nodiscard]] const std::map<std::string, OutputForm>& OutputFormNames();

/// Writes the whole table. Returns false when the stream failed, for example a closed pipe or a full disk.
bool WriteTable(const TableSource& source, OutputForm form, std::FILE* out);

/// The layout of the JSON reports, which they carry as `version`. A new member does not raise it.
inline constexpr int kReportVersion = 1;

/// Likewise for what a command says about data. In JSON it is one object, `{"version":1,"report":NAME,"rows":[...]}`;
/// docs/schemas describes each.
bool WriteReport(const char* name, const TableSource& source, OutputForm form, std::FILE* out);

} // namespace Kestrona::Tool
