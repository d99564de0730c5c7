#pragma once

#include "output/table_source.h"

#include <cstdio>

namespace Kestrona::Tool {

/// One array of objects. Numbers are JSON numbers, an empty cell of a number column is null.
void WriteJson(const TableSource& source, std::FILE* out);

/// One object a line.
void WriteJsonLines(const TableSource& source, std::FILE* out);

} // namespace Kestrona::Tool
