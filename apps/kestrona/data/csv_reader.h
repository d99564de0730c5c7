#pragma once

#include "data/text_decoder.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// Reads delimited text files row by row.

namespace Kestrona::Tool {

/// How a delimited file is written.
struct CsvDialect {
    char delimiter = ',';
    /// Cells may stand in double quotes. Tab-separated files use none.
    bool quotes = true;
};

struct CsvRow {
    std::size_t line = 0; ///< Line of the file on which the row begins, from 1.
    std::vector<std::string> cells;
};

/// Outcome of reading a file; an empty text means success.
struct CsvOutcome {
    std::string error;
    /// The file could not be opened or read; otherwise its content is at fault.
    bool unreadable = false;
};

/// Guesses the dialect from the start of a file: the delimiter that stands most often in its first line,
/// cells in quotes aside.
[[nodiscard]] CsvDialect GuessDialect(std::string_view start);

/// Reads a file and hands each row that is not blank to `take`, in UTF-8; it returns false to stop. The guessed dialect
/// is used.
[[nodiscard]] CsvOutcome ReadCsv(const std::string& path, TextEncoding encoding,
                                 const std::function<bool(const CsvRow&)>& take);

} // namespace Kestrona::Tool
