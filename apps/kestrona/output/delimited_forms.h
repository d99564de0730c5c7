#pragma once

#include "output/table_source.h"

#include <cstdio>

namespace Kestrona::Tool {

/// RFC 4180 with line feeds: a cell is quoted where it holds a comma, a quote or a line break.
void WriteCsv(const TableSource& source, std::FILE* out);

/// A pipe table; bars are escaped and line breaks become spaces.
void WriteMarkdown(const TableSource& source, std::FILE* out);

} // namespace Kestrona::Tool
