#pragma once

#include "output/table_source.h"

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace Kestrona::Tool {

struct TableLook {
    std::size_t width = 0; ///< Most cells that a line may take; 0 for no bound.
    bool color = false;
};

/// What a table had to leave out to keep to its width.
struct TableCuts {
    std::vector<std::string> columns; ///< Names of columns that are not there at all, the last ones.
    std::size_t cells = 0;            ///< Cells of which only the start is there, headings included.
};

/// Aligned columns for people: numbers to the right, texts to the left. Where the bound asks for it long texts are cut
/// with an ellipsis, and then columns left out.
TableCuts WriteTextTable(const TableSource& source, std::FILE* out, const TableLook& look);

/// Returns the number of terminal cells that a UTF-8 text takes.
[[nodiscard]] std::size_t DisplayWidth(std::string_view text);

/// Returns the longest start of a text that takes at most `width` cells, with "…" in the last cell when cut. Control
/// characters become spaces.
[[nodiscard]] std::string FitToWidth(std::string_view text, std::size_t width);

} // namespace Kestrona::Tool
