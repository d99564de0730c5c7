#pragma once

#include "output/table_source.h"

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>

namespace Kestrona::Tool {

/// Aligned columns for people: numbers to the right, texts to the left, long texts cut with an ellipsis.
void WriteTextTable(const TableSource& source, std::FILE* out);

/// Returns the number of terminal cells that a UTF-8 text takes.
[[nodiscard]] std::size_t DisplayWidth(std::string_view text);

/// Returns the longest start of a text that takes at most `width` cells, with "…" in the last cell when cut. Control
/// characters become spaces.
[[nodiscard]] std::string FitToWidth(std::string_view text, std::size_t width);

} // namespace Kestrona::Tool
