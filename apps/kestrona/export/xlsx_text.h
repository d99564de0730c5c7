#pragma once

#include "export/unique_names.h"

#include <string>

/// \file
/// What texts and names have to be like in a workbook.

namespace Kestrona::Tool {

/// The rows of a sheet, its heading included, and its columns.
inline constexpr std::size_t kSheetRows = 1048576;
inline constexpr std::size_t kSheetColumns = 16384;
/// UTF-16 units of the longest text of a cell and of the longest name of a sheet.
inline constexpr std::size_t kLongestCell = 32767;
inline constexpr std::size_t kLongestSheetName = 31;

/// Returns the text (UTF-8) so that a cell reads as it does: what looks like an escape is escaped, and characters that
/// no XML file can hold become U+FFFD. `was_cut` is set when the text is longer than a cell can be, which gets its
/// beginning.
[[nodiscard]] std::string XlsxText(const std::string& text, bool& was_cut);

/// Returns the name of the sheet for a table: without the characters that are not allowed there, short enough, and
/// unlike the others. Requires: `names` made with `kLongestSheetName`.
[[nodiscard]] std::string SheetName(const std::string& table, UniqueNames& names);

} // namespace Kestrona::Tool
